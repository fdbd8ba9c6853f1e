#include "Adaptors/Project/V27_MultitrackAdaptor.h"

#include "Archive/Internal/ObjectIds.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <QHash>
#include <QSet>

#include <algorithm>

using Archive::Internal::Elements;
using Archive::Internal::firstDescendant;

namespace Words = Archive::Words;

namespace Project {
namespace {

struct TrackRow {
    int number;
    int type;
    bool isLinked;
    bool isAlwaysUsed; ///< else it is used where a clip lies on it
};

// From the top down, as tracks are made and listed. Track 96 shares the type of track 64: that is wanted.
// clang-format off
constexpr TrackRow trackRows[] = {
    {96, 64, false, true},
    {80, 80, true, true},
    {64, 64, true, false},
    {48, 48, true, true},
    {32, 32, true, false},
    {16, 16, false, true},
};
// clang-format on
constexpr int numberStep = 16;

/// The first `track` below each `Item`, at whatever depth, as often as items share it.
Elements tracksOfItems(const QDomElement& clips) {
    Elements tracks;
    std::size_t open = 0;   // items around the current element
    std::size_t served = 0; // those of them, the outer ones, that have met their first track
    Archive::Internal::walkElements(
        clips,
        [&](const QDomElement& e) {
            if (e.tagName() == Words::Item) {
                ++open;
            } else if (e.tagName() == QLatin1String("track")) {
                tracks.insert(tracks.end(), open - served, e);
                served = open;
            }
        },
        [&](const QDomElement& e) {
            if (e.tagName() == Words::Item)
                served = std::min(served, --open);
        });
    return tracks;
}

int numberOf(const QDomElement& track) {
    return track.attribute(Words::value).toInt();
}

class Impl {
public:
    Impl(QDomDocument& document, const QDomElement& archive)
        : m_document(document), m_archive(archive), m_maximum(document) {}

    void collect();
    void convert();

private:
    void convertTimeline(QDomElement& timeline);
    QDomElement createTrack(const TrackRow& row, long long id, bool isUsed, const QString& timelineId);
    void referToTracks(Elements& tracks, const QHash<int, QString>& idTexts);

    QDomDocument& m_document;
    QDomElement m_archive;
    QDomElement m_predeclarations;
    Elements m_timelines;
    Archive::Internal::RenewedMaximum m_maximum;
};

void Impl::collect() {
    for (const auto& [object, type] : Archive::Internal::typedElements(m_document, Words::RootObject)) {
        if (type == Words::Predeclarator)
            m_predeclarations = firstDescendant(object, Words::predeclarations);
        else if (type == QLatin1String("Timeline::Object"))
            m_timelines.push_back(object);
    }
}

void Impl::convert() {
    for (QDomElement& timeline : m_timelines)
        convertTimeline(timeline);
}

void Impl::convertTimeline(QDomElement& timeline) {
    const QString timelineId = timeline.attribute(Words::objectId);
    Elements clipTracks = tracksOfItems(firstDescendant(timeline, QStringLiteral("clips")));
    QSet<int> usedNumbers;
    for (const QDomElement& track : clipTracks)
        usedNumbers.insert(numberOf(track));

    QDomElement tracks = Archive::createArray(m_document, QStringLiteral("tracks"), std::size(trackRows));
    QHash<int, QString> idTexts{{0, QStringLiteral("0")}};
    long long maxId = m_maximum.take();
    for (const TrackRow& row : trackRows) {
        const long long id = Archive::addPredeclaration(m_predeclarations, m_document,
                                                        QStringLiteral("Timeline::Track"), 0, maxId, -1, {});
        QDomElement item = Archive::createArrayItem(m_document, row.number / numberStep);
        item.appendChild(Archive::createObjectRef(m_document, Words::Data, id));
        tracks.appendChild(item);
        idTexts.insert(row.number, QString::number(id));
        const bool isUsed = row.isAlwaysUsed || usedNumbers.contains(row.number);
        m_archive.appendChild(createTrack(row, id, isUsed, timelineId));
        m_maximum.added(id);
    }
    if (!m_predeclarations.isNull())
        m_maximum.added(maxId);
    timeline.appendChild(tracks);
    referToTracks(clipTracks, idTexts);
}

QDomElement Impl::createTrack(const TrackRow& row, long long id, bool isUsed, const QString& timelineId) {
    QDomElement track =
        Archive::createObject(m_document, Words::RootObject, QStringLiteral("Timeline::Track"), id);
    track.appendChild(Archive::createInt32(m_document, QStringLiteral("type"), row.type));
    track.appendChild(Archive::createBool(m_document, QStringLiteral("used"), isUsed));
    track.appendChild(Archive::createBool(m_document, QStringLiteral("muted"), false));
    track.appendChild(Archive::createBool(m_document, QStringLiteral("hidden"), false));
    track.appendChild(Archive::createBool(m_document, QStringLiteral("linked"), row.isLinked));
    track.appendChild(
        Archive::createTypeValue(m_document, QStringLiteral("timeline"), Words::ObjectRef, timelineId));
    return track;
}

void Impl::referToTracks(Elements& tracks, const QHash<int, QString>& idTexts) {
    // A number without a track leaves an empty text. A `track` that two items share is read again as it was
    // left, so that its new id is taken for a track number.
    for (QDomElement& track : tracks) {
        track.setAttribute(Words::type, Words::ObjectRef);
        track.setAttribute(Words::value, idTexts.value(numberOf(track)));
    }
}

} // namespace

void V27_MultitrackAdaptor::adapt(QDomDocument& document) {
    const QDomElement archive = Archive::Internal::soleArchive(document);
    if (archive.isNull())
        return; // this step has never reported it
    Impl impl(document, archive);
    impl.collect();
    impl.convert();
}

} // namespace Project
