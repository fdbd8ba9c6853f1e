#include "Adaptors/Project/V22_TransitionsAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Count.h"
#include "Archive/Internal/Reading.h"

#include <QHash>

#include <map>
#include <set>
#include <vector>

using namespace Archive::Internal;

namespace Project {
namespace {

constexpr long long primaryTrack = 16;
constexpr long long fixedTrack = 48; // linked clips on this track keep their times

/// Changes the timings of the primary track and of the clips that are linked to it.
class TimingShift {
public:
    explicit TimingShift(ArchiveEditor& archive) : m_archive(archive) {}

    // Quirk: an `Item` at any depth counts as an entry. One without `Key` and `Value` counts as the clip 0
    // with a null timing, also if there is a clip 0.
    void collectLinks(const QDomElement& links);
    void collectClips(const QDomElement& clips);
    void convertClips();

private:
    void shrink(const QDomElement& timing, long long half, long long previousHalf);
    void moveLinked(long long id, long long previousHalf);
    void add(const QDomElement& parent, const QString& name, long long number);
    void subtract(const QDomElement& parent, const QString& name, long long number);

    ArchiveEditor& m_archive;
    QHash<long long, QDomElement> m_links;
    QHash<long long, std::set<long long>> m_linkedClips; ///< by the id of their master
    QHash<long long, QDomElement> m_timings;
    std::multimap<long long, long long> m_primaryClips; ///< by timestamp; equal ones in document order
};

void TimingShift::collectLinks(const QDomElement& links) {
    for (const QDomElement& item : elements(links, Words::Item)) {
        const long long id = int64In(item, Words::Key);
        const QDomElement link = item.firstChildElement(Words::Value);
        m_linkedClips[int64In(link, "master")].insert(id);
        m_links[id] = link;
    }
}

void TimingShift::collectClips(const QDomElement& clips) {
    std::vector<long long> primaryClips;
    for (const QDomElement& item : elements(clips, Words::Item)) {
        const long long id = int64In(item, Words::Key);
        const QDomElement timing = item.firstChildElement(Words::Value);
        m_timings[id] = timing;
        // Quirk: an id with two entries is listed and converted twice, both times with its last timing.
        if (int64In(timing, "track") == primaryTrack)
            primaryClips.push_back(id);
    }
    for (const long long id : primaryClips)
        m_primaryClips.emplace(int64In(m_timings.value(id), "timestamp"), id);
}

void TimingShift::convertClips() {
    long long previousHalf = 0;
    for (const auto& [timestamp, id] : m_primaryClips) {
        const QDomElement timing = m_timings.value(id);
        const long long half = int64In(timing, "transitionDuration") / 2;
        shrink(timing, half, previousHalf);
        m_archive.fieldsInsteadOf(childOf(timing, "transitionDuration")).int64("transitionHalf", half);
        for (const long long linked : m_linkedClips.value(id))
            moveLinked(linked, previousHalf);
        previousHalf = half;
    }
}

void TimingShift::shrink(const QDomElement& timing, long long half, long long previousHalf) {
    add(timing, "timestamp", previousHalf);
    add(timing, "sourcePosition", previousHalf);
    subtract(timing, "duration", half + previousHalf);
}

void TimingShift::moveLinked(long long id, long long previousHalf) {
    const QDomElement timing = m_timings.value(id);
    if (int64In(timing, "track") == fixedTrack)
        return;
    subtract(timing, "timestamp", previousHalf);
    subtract(m_links.value(id), "offset", previousHalf);
}

void TimingShift::add(const QDomElement& parent, const QString& name, long long number) {
    m_archive.setField(parent, name, wrappingSum(int64In(parent, name), number));
}

void TimingShift::subtract(const QDomElement& parent, const QString& name, long long number) {
    m_archive.setField(parent, name, wrappingDifference(int64In(parent, name), number));
}

void addStrategies(ArchiveEditor& archive) {
    // Quirk: transitions outside of the archive get one as well.
    for (const QDomElement& transition : ofType(archive.baseParts(Scope::Document), "Transition::Object"))
        archive.fields(transition).int32("strategy", 0);
}

} // namespace

void V22_TransitionsAdaptor::convert(ArchiveEditor& archive) {
    TimingShift shift(archive);
    shift.collectLinks(firstDescendant(archive.root(), "links"));
    shift.collectClips(firstDescendant(archive.root(), "clips"));
    addStrategies(archive);
    shift.convertClips();
}

} // namespace Project
