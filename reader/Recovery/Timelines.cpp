#include "Recovery/Fields.h"
#include "Recovery/Salvage.h"

#include <algorithm>
#include <map>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace Reader {
namespace {

/// A track and a level on it.
using Lane = std::pair<ObjectId, long long>;

class TimelineMending {
public:
    TimelineMending(Salvage& salvage, int version, RecoveryReport& report)
        : m_salvage(salvage), m_version(version), m_report(report), m_clips(salvage.clips()) {}

    void run();

private:
    struct Timeline {
        bool isWhole = true;
        std::string name;
        std::vector<ObjectId> tracks;
        std::unordered_set<ObjectId> listedTracks;
        std::map<long long, std::map<Lane, std::size_t>> lanes; ///< by the type of the clips on them
        long long end = 0;                                      ///< of the last clip
        std::vector<ObjectId> scenes;                           ///< timelines of the clips that are listed
    };

    void readTimelines();
    void readEntry(ObjectId timelineId, Timeline& timeline, const SalvagedEntry& entry);
    void makeLostTimelines();
    void listTracks();
    void mendTracks();
    void listClips();
    void putBack(const SalvagedClip& clip, ObjectId timelineId);
    Lane laneFor(long long clipType, ObjectId timelineId);
    ObjectId trackOfType(long long type, ObjectId timelineId);
    long long missingType(long long clipType, ObjectId timelineId);
    ObjectId addTrack(ObjectId id, long long type, ObjectId timelineId);
    void chooseMain();
    void attachScenes();
    void visit(ObjectId timelineId);
    Timeline& at(ObjectId id) { return m_timelines.at(id); }
    bool hasTrackObjects() const { return m_version >= objectTracksVersion; }

    Salvage& m_salvage;
    const int m_version;
    RecoveryReport& m_report;
    std::vector<SalvagedClip> m_clips;
    std::unordered_map<ObjectId, const SalvagedClip*> m_clipsById;
    std::vector<ObjectId> m_order; ///< timelines, in the order of the file; those that were made come last
    std::unordered_map<ObjectId, Timeline> m_timelines;
    std::unordered_map<ObjectId, long long> m_trackTypes;
    std::vector<std::pair<ObjectId, ObjectId>> m_lostTracks;   ///< with the timeline of the clip on it
    std::unordered_map<ObjectId, long long> m_clipTypeOnTrack; ///< of the first clip on a lost track
    std::unordered_set<ObjectId> m_listed;                     ///< clips at a known time
    ObjectId m_main = 0;
    std::unordered_set<ObjectId> m_visited; ///< timelines that the main one leads to
};

void TimelineMending::run() {
    for (const SalvagedClip& clip : m_clips)
        m_clipsById.emplace(clip.id, &clip);
    readTimelines();
    makeLostTimelines();
    for (const SalvagedClip& clip : m_clips) {
        if (!clip.isWhole)
            m_salvage.completeScene(clip.id, clip.timeline != 0 ? clip.timeline : m_order.front());
    }
    if (hasTrackObjects()) {
        listTracks();
        mendTracks();
    }
    listClips();
    chooseMain();
    attachScenes();
}

void TimelineMending::readTimelines() {
    for (const SalvagedTrack& track : m_salvage.tracks())
        m_trackTypes.emplace(track.id, track.type);
    for (SalvagedTimeline& read : m_salvage.timelines()) {
        const auto [place, isNew] = m_timelines.try_emplace(read.id);
        if (!isNew)
            continue;
        m_order.push_back(read.id);
        Timeline& timeline = place->second;
        timeline.isWhole = read.isWhole;
        timeline.name = std::move(read.name);
        timeline.listedTracks.insert(read.tracks.begin(), read.tracks.end());
        timeline.tracks = std::move(read.tracks);
        for (const SalvagedEntry& entry : read.entries)
            readEntry(read.id, timeline, entry);
    }
}

void TimelineMending::readEntry(ObjectId timelineId, Timeline& timeline, const SalvagedEntry& entry) {
    const auto clip = m_clipsById.find(entry.clip);
    if (clip == m_clipsById.end())
        return;
    if (m_listed.insert(entry.clip).second) {
        if (clip->second->isWhole)
            ++m_report.clipsInPlace;
        else
            m_report.clipsReduced.push_back({clip->second->id, clip->second->name});
    }
    const ClipPlace& place = entry.place;
    timeline.end = std::max(timeline.end, clampedTime(place.timestamp + place.duration));
    if (clip->second->nested != 0)
        timeline.scenes.push_back(clip->second->nested);
    if (hasTrackObjects() && !m_trackTypes.count(place.track)) {
        m_lostTracks.emplace_back(entry.clip, timelineId);
        if (place.track != 0)
            m_clipTypeOnTrack.emplace(place.track, clip->second->type);
    }
    ++timeline.lanes[clip->second->type][{place.track, place.level}];
}

/// Makes the timelines that clips belong to and that are lost. There is at least one timeline afterwards.
void TimelineMending::makeLostTimelines() {
    const auto make = [this](ObjectId id) {
        const ObjectId made = m_salvage.makeTimeline(id);
        m_order.push_back(made);
        m_timelines[made].isWhole = false;
        return made;
    };
    for (const SalvagedClip& clip : m_clips) {
        if (clip.timeline != 0 && !m_timelines.count(clip.timeline))
            make(clip.timeline);
    }
    const ObjectId main = m_salvage.mainTimeline();
    if (m_order.empty())
        make(main);
}

/// Lists the tracks of timelines whose own lists may have lost some.
void TimelineMending::listTracks() {
    for (const SalvagedTrack& track : m_salvage.tracks()) {
        const auto timeline = m_timelines.find(track.timeline);
        if (timeline == m_timelines.end() || timeline->second.isWhole ||
            !timeline->second.listedTracks.insert(track.id).second)
            continue;
        timeline->second.tracks.push_back(track.id);
        m_salvage.listTrack(track.timeline, track.id);
    }
}

/// Makes the lost tracks that clips are on.
void TimelineMending::mendTracks() {
    if (m_lostTracks.empty())
        return;
    std::unordered_map<ObjectId, ObjectId> tracks; // by clip
    for (const SalvagedTimeline& timeline : m_salvage.timelines()) {
        for (const SalvagedEntry& entry : timeline.entries)
            tracks.emplace(entry.clip, entry.place.track);
    }
    for (const auto& [clip, timelineId] : m_lostTracks) {
        const ObjectId lost = tracks.at(clip);
        const long long clipType = m_clipsById.at(clip)->type;
        if (lost != 0 && m_trackTypes.count(lost))
            continue; // made for another clip
        if (lost != 0)
            addTrack(lost, missingType(m_clipTypeOnTrack.at(lost), timelineId), timelineId);
        else
            m_salvage.moveClip(timelineId, clip, trackOfType(usualTrack(clipType, m_version), timelineId));
    }
}

/// The type of a lost track with clips of that type: the usual one, or that of a track above where another track is
/// the usual one.
long long TimelineMending::missingType(long long clipType, ObjectId timelineId) {
    const long long usual = usualTrack(clipType, m_version);
    const auto& tracks = at(timelineId).tracks;
    const bool isTaken = std::any_of(tracks.begin(), tracks.end(), [&](ObjectId track) {
        const auto found = m_trackTypes.find(track);
        return found != m_trackTypes.end() && found->second == usual;
    });
    return isTaken ? overlayTrack(m_version) : usual;
}

ObjectId TimelineMending::addTrack(ObjectId id, long long type, ObjectId timelineId) {
    const ObjectId made = m_salvage.makeTrack(id, type, timelineId);
    m_trackTypes.emplace(made, type);
    Timeline& timeline = at(timelineId);
    if (timeline.listedTracks.insert(made).second) {
        timeline.tracks.push_back(made);
        m_salvage.listTrack(timelineId, made);
    }
    return made;
}

/// The timeline's first track of that type, which is made where there is none.
ObjectId TimelineMending::trackOfType(long long type, ObjectId timelineId) {
    for (const ObjectId track : at(timelineId).tracks) {
        const auto found = m_trackTypes.find(track);
        if (found != m_trackTypes.end() && found->second == type)
            return track;
    }
    return addTrack(0, type, timelineId);
}

/// Puts clips back that their timeline no longer lists. A timeline that is whole never listed them.
void TimelineMending::listClips() {
    for (const SalvagedClip& clip : m_clips) {
        const ObjectId timelineId = clip.timeline != 0 ? clip.timeline : m_order.front();
        if (!m_listed.count(clip.id) && !at(timelineId).isWhole && m_listed.insert(clip.id).second)
            putBack(clip, timelineId);
    }
}

/// Adds a clip at the end of its timeline.
void TimelineMending::putBack(const SalvagedClip& clip, ObjectId timelineId) {
    Timeline& timeline = at(timelineId);
    const Lane lane = laneFor(clip.type, timelineId);
    constexpr long long shortest = 1;
    const long long duration = std::max(clip.duration, shortest);
    m_salvage.listClip(timelineId, clip.id, {lane.first, lane.second, timeline.end, duration});
    timeline.end = clampedTime(timeline.end + duration);
    if (clip.nested != 0)
        timeline.scenes.push_back(clip.nested);
    (clip.isWhole ? m_report.clipsMoved : m_report.clipsReduced).push_back({clip.id, clip.name});
}

/// The track and the level of most clips of that type, and the usual track of such clips where the timeline has none.
Lane TimelineMending::laneFor(long long clipType, ObjectId timelineId) {
    const auto& lanes = at(timelineId).lanes;
    if (const auto found = lanes.find(clipType); found != lanes.end()) {
        const auto most = std::max_element(
            found->second.begin(), found->second.end(),
            [](const auto& first, const auto& second) { return first.second < second.second; });
        if (!hasTrackObjects() || m_trackTypes.count(most->first.first))
            return most->first;
    }
    const long long type = usualTrack(clipType, m_version);
    return {hasTrackObjects() ? trackOfType(type, timelineId) : static_cast<ObjectId>(type), 0};
}

/// The main timeline is the one that the root object leads to. Where that is lost, it is the one with the most clips
/// among those that are no scenes.
void TimelineMending::chooseMain() {
    m_main = m_salvage.mainTimeline();
    if (m_main != 0 && m_timelines.count(m_main)) {
        m_salvage.setMainTimeline(m_main);
        return;
    }
    std::unordered_map<ObjectId, std::size_t> clips;
    std::unordered_set<ObjectId> scenes;
    for (const SalvagedClip& clip : m_clips) {
        ++clips[clip.timeline];
        scenes.insert(clip.nested);
    }
    const auto rank = [&](ObjectId id) { return std::pair(scenes.count(id) == 0, clips[id]); };
    m_main = *std::max_element(m_order.begin(), m_order.end(),
                               [&](ObjectId first, ObjectId second) { return rank(first) < rank(second); });
    m_salvage.setMainTimeline(m_main);
}

/// Timelines whose scene clip is lost get a new one at the end of the main timeline.
void TimelineMending::attachScenes() {
    visit(m_main);
    std::unordered_set<ObjectId> inner; // scenes of timelines that nothing leads to
    std::unordered_map<ObjectId, bool> hasClips;
    for (const ObjectId id : m_order) {
        if (!m_visited.count(id))
            inner.insert(at(id).scenes.begin(), at(id).scenes.end());
    }
    for (const SalvagedClip& clip : m_clips)
        hasClips[clip.timeline] = true;
    const auto attach = [&](ObjectId id) {
        if (m_visited.count(id) || !hasClips[id])
            return;
        const std::string name = at(id).name.empty() ? "Scene" : at(id).name;
        const ObjectId scene = m_salvage.makeScene(id, m_main, name);
        const Lane lane = laneFor(sceneClip, m_main);
        const long long duration = std::max(at(id).end, 1LL);
        m_salvage.listClip(m_main, scene, {lane.first, lane.second, at(m_main).end, duration});
        at(m_main).end = clampedTime(at(m_main).end + duration);
        visit(id);
    };
    for (const ObjectId id : m_order) {
        if (!inner.count(id))
            attach(id);
    }
    for (const ObjectId id : m_order)
        attach(id); // those that are scenes of each other
}

/// Notes a timeline and all that its clips lead to.
void TimelineMending::visit(ObjectId timelineId) {
    std::vector<ObjectId> open = {timelineId};
    while (!open.empty()) {
        const ObjectId id = open.back();
        open.pop_back();
        const auto timeline = m_timelines.find(id);
        if (timeline != m_timelines.end() && m_visited.insert(id).second)
            open.insert(open.end(), timeline->second.scenes.begin(), timeline->second.scenes.end());
    }
}

} // namespace

void mendTimelines(Salvage& salvage, int version, RecoveryReport& report) {
    TimelineMending(salvage, version, report).run();
}

} // namespace Reader
