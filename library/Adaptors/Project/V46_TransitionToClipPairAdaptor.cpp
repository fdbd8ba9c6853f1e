#include "Adaptors/Project/V46_TransitionToClipPairAdaptor.h"

#include "Adaptors/Project/Internal/TitleClip.h"
#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Count.h"
#include "Archive/Internal/Reading.h"

#include <glog/logging.h>

#include <algorithm>
#include <optional>

using namespace Archive::Internal;

namespace Project {
namespace {

constexpr int primaryTrackType = 16;

/// A clip of the primary track.
struct PrimaryClip {
    QDomElement clip;
    QDomElement timing;
    long long timestamp;

    long long transition() const { return int64In(clip, "transition"); }
    long long transitionHalf() const { return int64In(timing, "transitionHalf"); }
};

/// A timeline that has clips and a primary track.
struct Timeline {
    QDomElement object;
    unsigned long long primaryTrackId;
    std::vector<PrimaryClip> primaryClips; ///< sorted by time
    Elements timings;                      ///< of all clips
};

class TimelineCollection {
public:
    explicit TimelineCollection(ArchiveEditor& archive)
        : m_archive(archive), m_objects(archive.rootObjects()) {}

    /// Collects the timelines. False if a clip is incomplete; then the document must not be changed.
    bool collect();
    const std::vector<Timeline>& timelines() const { return m_timelines; }

private:
    void collectPrimaryTracks();
    bool collectTimeline(const QDomElement& object);
    bool collectClip(Timeline& timeline, const QDomElement& item);

    ArchiveEditor& m_archive;
    TypedElements m_objects;
    QHash<unsigned long long, QDomElement> m_objectsById; ///< if an id occurs twice, the last one; as below
    QHash<unsigned long long, unsigned long long> m_primaryTracks; ///< track by timeline
    std::vector<Timeline> m_timelines;
};

bool TimelineCollection::collect() {
    for (const auto& [object, type] : m_objects)
        m_objectsById[Archive::objectIdOf(object)] = object;
    collectPrimaryTracks();
    const Elements timelines = ofType(m_objects, "Timeline::Object");
    return std::all_of(timelines.rbegin(), timelines.rend(), // Quirk: from the last to the first
                       [this](const QDomElement& object) { return collectTimeline(object); });
}

void TimelineCollection::collectPrimaryTracks() {
    for (const QDomElement& track : ofType(m_objects, "Timeline::Track")) {
        if (int64In(track, Words::type) == primaryTrackType)
            m_primaryTracks[uint64In(track, "timeline")] = Archive::objectIdOf(track);
    }
}

bool TimelineCollection::collectTimeline(const QDomElement& object) {
    const Subject subject(m_archive, object);
    const QDomElement clips = childOf(object, "clips");
    if (clips.isNull()) {
        LOG(ERROR) << "Not found timeline <clips> element";
        return true;
    }
    const Elements items = elements(clips, Words::Item);
    if (items.empty())
        return true;
    const auto track = m_primaryTracks.constFind(Archive::objectIdOf(object));
    if (track == m_primaryTracks.constEnd()) {
        LOG(ERROR) << "Not found timeline primary track";
        return true;
    }
    Timeline timeline{object, *track, {}, {}};
    for (const QDomElement& item : items) {
        if (!collectClip(timeline, item))
            return false;
    }
    std::ranges::stable_sort(timeline.primaryClips, {}, &PrimaryClip::timestamp);
    m_timelines.push_back(std::move(timeline));
    return true;
}

bool TimelineCollection::collectClip(Timeline& timeline, const QDomElement& item) {
    const QDomElement clip = m_objectsById.value(uint64In(item, Words::Key));
    const Subject subject(m_archive, clip.isNull() ? timeline.object : clip);
    const QDomElement timing = item.firstChildElement(Words::Value);
    if (timing.isNull()) {
        LOG(WARNING) << "Not found element for timeline clip timing";
        return false;
    }
    if (clip.isNull()) {
        LOG(WARNING) << "Not found element for timeline clip";
        return false;
    }
    timeline.timings.push_back(timing);
    if (uint64In(timing, "track") == timeline.primaryTrackId)
        timeline.primaryClips.push_back({clip, timing, int64In(timing, "timestamp")});
    return true;
}

void setTime(ArchiveEditor& archive, const QDomElement& timing, const QString& name, long long time) {
    if (timing.firstChildElement(name).isNull())
        archive.fields(timing).int64(name, time);
    else
        archive.setField(timing, name, time);
}

/// `second` is null for the transition of the last clip.
void appendTransition(ArchiveEditor& archive, const QDomElement& transitions, const PrimaryClip& first,
                      const PrimaryClip* second) {
    const long long half = first.transitionHalf(); // Quirk: the half of the first clip is used for both
    setTime(archive, first.timing, "transitionOut", half);
    if (second)
        setTime(archive, second->timing, "transitionIn", half);

    const QDomElement item = archive.appendItem(transitions);
    archive.fields(item).reference(Words::Key, first.transition());
    archive.fields(archive.appendItem(item, Words::Value))
        .reference(Words::First, wrappedIdOf(first.clip))
        .reference(Words::Second, second ? wrappedIdOf(second->clip) : 0);
}

void appendTransitions(ArchiveEditor& archive, const Timeline& timeline) {
    const auto& clips = timeline.primaryClips;
    if (clips.empty())
        return;
    const QDomElement transitions = archive.fields(timeline.object).array("transitions").last();
    for (std::size_t number = 0; number < clips.size(); ++number) {
        if (clips[number].transition() != 0)
            appendTransition(archive, transitions, clips[number],
                             number + 1 < clips.size() ? &clips[number + 1] : nullptr);
    }
}

/// Finds the records of timelines. Quirk: each search walks through the entries of the predeclarations at any
/// depth and logs those without `Data`. The relevant entries are cached between searches.
class TimelineRecords {
public:
    TimelineRecords(ArchiveEditor& archive, const QDomElement& top);

    /// The position of the first record of that timeline.
    std::optional<std::size_t> find(unsigned long long timelineId);

    /// Adds a reference to an object to the record at that position.
    void appendReference(std::size_t position, long long id);

private:
    struct Entry {
        QDomElement item;
        QDomElement data;
        unsigned long long timelineId;
    };

    void collect();

    ArchiveEditor& m_archive;
    bool m_hasPredeclarator = false;
    bool m_isFlat = true; ///< each root object is a child of the archive
    bool m_isCollected = false;
    std::vector<Entry> m_entries;
};

TimelineRecords::TimelineRecords(ArchiveEditor& archive, const QDomElement& top) : m_archive(archive) {
    for (const auto& [object, type] : archive.rootObjects()) {
        m_hasPredeclarator = m_hasPredeclarator || type == Words::Predeclarator;
        m_isFlat = m_isFlat && object.parentNode() == top;
    }
}

std::optional<std::size_t> TimelineRecords::find(unsigned long long timelineId) {
    if (!m_hasPredeclarator)
        return std::nullopt; // Quirk: not logged
    // If root objects are nested, records may have been removed together with a field of a timing.
    if (!m_isCollected || !m_isFlat)
        collect();
    for (std::size_t position = 0; position < m_entries.size(); ++position) {
        if (m_entries[position].data.isNull())
            LOG(WARNING) << "Predeclaration <Data> element is null";
        else if (m_entries[position].timelineId == timelineId)
            return position;
    }
    LOG(WARNING) << "Not found timeline predeclarator element";
    return std::nullopt;
}

void TimelineRecords::collect() {
    m_entries.clear();
    for (const QDomElement& item : elements(m_archive.predeclarations(), Words::Item)) {
        const QDomElement data = item.firstChildElement(Words::Data);
        if (data.isNull() || Archive::valueOf(data, Words::typeName) == QLatin1String("Timeline::Object"))
            m_entries.push_back({item, data, uint64In(data, Words::oid)});
    }
    m_isCollected = true;
}

bool isBelow(QDomNode node, const QDomNode& top) {
    while (!node.isNull() && node != top)
        node = node.parentNode();
    return !node.isNull();
}

void TimelineRecords::appendReference(std::size_t position, long long id) {
    const Entry found = m_entries[position];
    const QDomElement entry = m_archive.appendItem(found.data, Words::refs);
    // Quirk: `Value`, not `Data` as in all other references: later searches log this entry.
    m_archive.fields(entry).reference(Words::Value, id);
    const auto next = m_entries.begin() + static_cast<std::ptrdiff_t>(position) + 1;
    if (next != m_entries.end() && isBelow(next->item, found.item))
        m_isCollected = false; // the new entry may come after that one
    else
        m_entries.insert(next, {entry, {}, 0});
}

void appendTitleTiming(ArchiveEditor& archive, const Timeline& timeline, long long clipId,
                       long long timingId) {
    const PrimaryClip& last = timeline.primaryClips.back();
    const QDomElement item = archive.appendItem(childOf(timeline.object, "clips"));
    archive.fields(item).reference(Words::Key, clipId);
    archive.fields(archive.appendObject(item, Words::Value, "Timeline::ClipTiming", timingId))
        .reference("track", static_cast<long long>(timeline.primaryTrackId))
        .int32("trackLevel", 0)
        .int64("timestamp", wrappingSum(last.timestamp, int64In(last.timing, "duration")))
        .int64("sourceDuration", Internal::titleDuration)
        .int64("sourcePosition", 0)
        .int64("duration", last.transitionHalf())
        .int64("transitionIn", 0)
        .int64("transitionOut", 0)
        .int64("fadeInDuraion", 0) // Quirk: misspelled up to version 77, as is the next one
        .int64("fadeOutDuraion", 0)
        .boolean("reversed", false)
        .int32("timingMode", 0);
}

/// Appends a title after the last clip, as the target of its transition. Quirk: the pair is not completed:
/// its `Second` stays 0, and so does the `transitionIn` of the title.
void appendTitle(ArchiveEditor& archive, const QDomElement& top, const Timeline& timeline,
                 TimelineRecords& records) {
    const auto record = records.find(Archive::objectIdOf(timeline.object));
    if (!record)
        return;
    archive.startIds();
    const long long timelineId = wrappedIdOf(timeline.object);
    const long long clipId = Internal::appendTitleClip(archive, top, timelineId);
    const long long timingId = archive.declare("Timeline::ClipTiming", timelineId);
    records.appendReference(*record, timingId);
    appendTitleTiming(archive, timeline, clipId, timingId);
}

/// Replaces `transitionHalf` by the two times, 0 if they are not set.
void completeTiming(ArchiveEditor& archive, const QDomElement& timing) {
    archive.removeField(timing, "transitionHalf");
    for (const char* name : {"transitionIn", "transitionOut"}) {
        if (timing.firstChildElement(name).isNull())
            archive.fields(timing).int64(name, 0);
    }
}

} // namespace

void V46_TransitionToClipPairAdaptor::convert(ArchiveEditor& archive) {
    const QDomElement top = archive.document().firstChildElement(Words::Archive);
    if (top.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return;
    }
    TimelineCollection collection(archive);
    if (!collection.collect() || collection.timelines().empty())
        return;
    TimelineRecords records(archive, top);
    for (const Timeline& timeline : collection.timelines()) {
        appendTransitions(archive, timeline);
        if (!timeline.primaryClips.empty() && timeline.primaryClips.back().transition() != 0)
            appendTitle(archive, top, timeline, records);
        for (const QDomElement& timing : timeline.timings)
            completeTiming(archive, timing);
    }
    // Quirk: clips of other tracks and of skipped timelines lose their transition as well.
    for (const QDomElement& clip : archive.rootObjects("Timeline::Clip"))
        archive.removeField(clip, "transition");
}

} // namespace Project
