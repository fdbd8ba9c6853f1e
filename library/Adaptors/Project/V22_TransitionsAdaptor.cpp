#include "Adaptors/Project/V22_TransitionsAdaptor.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <QHash>

#include <glog/logging.h>

#include <algorithm>
#include <set>
#include <vector>

namespace Project {
namespace {

namespace Words = Archive::Words;
using Archive::Internal::elements;
using Archive::Internal::firstDescendant;

constexpr long long primaryTrack = 16;
constexpr long long fixedTrack = 48; // what is linked there keeps its time

const QString clipsName = QStringLiteral("clips");
const QString linksName = QStringLiteral("links");
const QString masterName = QStringLiteral("master");
const QString offsetName = QStringLiteral("offset");
const QString trackName = QStringLiteral("track");
const QString timestampName = QStringLiteral("timestamp");
const QString durationName = QStringLiteral("duration");
const QString sourcePositionName = QStringLiteral("sourcePosition");
const QString transitionDurationName = QStringLiteral("transitionDuration");
const QString transitionHalfName = QStringLiteral("transitionHalf");

// Times come from files: where they are absurd they wrap.
constexpr long long sum(long long a, long long b) {
    return static_cast<long long>(static_cast<unsigned long long>(a) + static_cast<unsigned long long>(b));
}
constexpr long long difference(long long a, long long b) {
    return static_cast<long long>(static_cast<unsigned long long>(a) - static_cast<unsigned long long>(b));
}

long long numberOf(const QDomElement& parent, const QString& name) {
    return Archive::valueOf(parent, name).toLongLong();
}

void setNumberOf(const QDomElement& parent, const QString& name, long long number) {
    Archive::setValueOf(parent, name, QString::number(number));
}

class Impl {
public:
    explicit Impl(QDomDocument& document) : m_document(document) {}

    void collect(const QDomElement& archive) {
        collectLinks(firstDescendant(archive, linksName));
        collectClips(firstDescendant(archive, clipsName));
        sortByTime();
    }

    void convert() {
        addStrategies();
        long long previousDuration = 0;
        for (const long long id : m_primaryClips)
            previousDuration = convertClip(id, previousDuration);
    }

private:
    // An `Item` at any depth is an entry. One without `Key` and `Value` stands for the clip 0 with a null timing,
    // also where there is a clip 0.

    void collectLinks(const QDomElement& links) {
        for (const QDomElement& item : elements(links, Words::Item)) {
            const long long id = numberOf(item, Words::Key);
            const QDomElement link = item.firstChildElement(Words::Value);
            m_linkedClips[numberOf(link, masterName)].insert(id);
            m_links[id] = link;
        }
    }

    void collectClips(const QDomElement& clips) {
        for (const QDomElement& item : elements(clips, Words::Item)) {
            const long long id = numberOf(item, Words::Key);
            const QDomElement timing = item.firstChildElement(Words::Value);
            m_timings[id] = timing;
            // An id that stands twice is listed twice and then converted twice.
            if (numberOf(timing, trackName) == primaryTrack)
                m_primaryClips.push_back(id);
        }
    }

    void sortByTime() {
        QHash<long long, long long> timestamps;
        for (const long long id : m_primaryClips)
            timestamps[id] = numberOf(m_timings.value(id), timestampName);
        std::stable_sort(m_primaryClips.begin(), m_primaryClips.end(),
                         [&](long long a, long long b) { return timestamps.value(a) < timestamps.value(b); });
    }

    void addStrategies() {
        for (QDomElement& transition :
             elements(m_document, Words::BaseOfObject, QStringLiteral("Transition::Object")))
            transition.appendChild(Archive::createInt32(m_document, QStringLiteral("strategy"), 0));
    }

    /// Gives the clip's own `transitionDuration`.
    long long convertClip(long long id, long long previousDuration) {
        QDomElement timing = m_timings.value(id);
        const long long duration = numberOf(timing, transitionDurationName);
        const long long half = duration / 2;
        const long long previousHalf = previousDuration / 2;
        shrink(timing, half, previousHalf);
        replaceByHalf(timing, half);
        for (const long long linked : m_linkedClips.value(id))
            moveLinked(linked, previousHalf);
        return duration;
    }

    void shrink(const QDomElement& timing, long long half, long long previousHalf) {
        setNumberOf(timing, timestampName, sum(numberOf(timing, timestampName), previousHalf));
        setNumberOf(timing, sourcePositionName, sum(numberOf(timing, sourcePositionName), previousHalf));
        setNumberOf(timing, durationName, difference(numberOf(timing, durationName), half + previousHalf));
    }

    void replaceByHalf(QDomElement& timing, long long half) {
        const QDomElement old = timing.firstChildElement(transitionDurationName);
        if (!old.isNull())
            Archive::Internal::replaceChild(timing,
                                            Archive::createInt64(m_document, transitionHalfName, half), old);
    }

    void moveLinked(long long id, long long previousHalf) {
        const QDomElement timing = m_timings.value(id);
        if (numberOf(timing, trackName) == fixedTrack)
            return;
        setNumberOf(timing, timestampName, difference(numberOf(timing, timestampName), previousHalf));
        const QDomElement link = m_links.value(id);
        setNumberOf(link, offsetName, difference(numberOf(link, offsetName), previousHalf));
    }

    QDomDocument m_document;
    std::vector<long long> m_primaryClips;
    QHash<long long, QDomElement> m_timings;
    QHash<long long, QDomElement> m_links;
    QHash<long long, std::set<long long>> m_linkedClips; ///< by their master
};

} // namespace

void V22_TransitionsAdaptor::adapt(QDomDocument& document) {
    const QDomElement archive = Archive::Internal::soleArchive(document);
    if (archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return;
    }
    Impl impl(document);
    impl.collect(archive);
    impl.convert();
}

} // namespace Project
