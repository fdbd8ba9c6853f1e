#include "Adaptors/Project/V27_MultitrackAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Reading.h"

#include <algorithm>

using namespace Archive::Internal;

namespace Project {
namespace {

struct TrackRow {
    int number;
    int type;
    bool isLinked;
    bool isAlwaysUsed; ///< otherwise it is used if a clip is on it
};

// From the topmost track down, the order in which they are created and listed. Quirk: track 96 has the type
// of track 64.
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

/// The first `track` below each `Item`, at any depth. A track that is the first one of several nested items
/// is listed once for each.
Elements tracksOfItems(const QDomElement& clips) {
    Elements tracks;
    std::size_t open = 0; // items that contain the current element
    std::size_t done = 0; // how many of these, from the outermost, have their first track
    walkElements(
        clips,
        [&](const QDomElement& e) {
            if (e.tagName() == Words::Item) {
                ++open;
            } else if (e.tagName() == QLatin1String("track")) {
                tracks.insert(tracks.end(), open - done, e);
                done = open;
            }
        },
        [&](const QDomElement& e) {
            if (e.tagName() == Words::Item)
                done = std::min(done, --open);
        });
    return tracks;
}

QSet<int> numbersOf(const Elements& tracks) {
    QSet<int> numbers;
    for (const QDomElement& track : tracks)
        numbers.insert(int32Of(track));
    return numbers;
}

void appendTrack(ArchiveEditor& archive, const TrackRow& row, long long id, bool isUsed,
                 const QString& timelineId) {
    archive.fields(archive.appendRootObject("Timeline::Track", id))
        .int32("type", row.type)
        .boolean("used", isUsed)
        .boolean("muted", false)
        .boolean("hidden", false)
        .boolean("linked", row.isLinked)
        .reference("timeline", timelineId);
}

/// Appends the tracks of a timeline and gives their ids by number.
QHash<int, QString> appendTracks(ArchiveEditor& archive, const QDomElement& timeline,
                                 const QSet<int>& usedNumbers) {
    QHash<int, QString> ids{{0, "0"}};
    const QDomElement tracks = archive.fields(timeline).array("tracks").last();
    for (const TrackRow& row : trackRows) {
        const long long id = archive.declare("Timeline::Track");
        const QDomElement item = archive.appendItem(tracks);
        archive.setIndex(item, row.number / numberStep); // Quirk: the index counts down
        archive.fields(item).reference(Words::Data, id);
        const bool isUsed = row.isAlwaysUsed || usedNumbers.contains(row.number);
        appendTrack(archive, row, id, isUsed, timeline.attribute(Words::objectId));
        ids.insert(row.number, QString::number(id));
    }
    return ids;
}

/// Quirk: a number without a track becomes an empty text. A `track` that is listed twice is converted twice,
/// so its new id is read as a track number.
void referToTracks(ArchiveEditor& archive, const Elements& clipTracks, const QHash<int, QString>& ids) {
    for (const QDomElement& track : clipTracks) {
        archive.setType(track, Words::ObjectRef);
        archive.setText(track, ids.value(int32Of(track)));
    }
}

void convertTimeline(ArchiveEditor& archive, const QDomElement& timeline) {
    // Quirk: the greatest id is read again for each timeline. Ids of records that were dropped are used
    // again.
    archive.startIds();
    const Elements clipTracks = tracksOfItems(firstDescendant(timeline, "clips"));
    const auto ids = appendTracks(archive, timeline, numbersOf(clipTracks));
    referToTracks(archive, clipTracks, ids);
}

} // namespace

void V27_MultitrackAdaptor::convert(ArchiveEditor& archive) {
    if (archive.root().isNull())
        return; // Quirk: not logged
    // Quirk: the records are those in the first descendant of that name, not in the first child.
    const QDomElement predeclarator = archive.lastRootObject(Words::Predeclarator);
    archive.setPredeclarations(firstDescendant(predeclarator, Words::predeclarations));
    for (const QDomElement& timeline : archive.rootObjects("Timeline::Object"))
        convertTimeline(archive, timeline);
}

} // namespace Project
