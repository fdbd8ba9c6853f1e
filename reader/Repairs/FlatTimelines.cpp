#include "Repairs/FlatTimelines.h"

#include "Archive/Internal/FlatObjects.h"
#include "Archive/Internal/JsonFields.h"

using Archive::Internal::memberOf;
using nlohmann::json;
using Serialize::Json::getAnyObjectId;

namespace Repairs {
namespace {

json* objectOf(Reader::JsonDocument& document, const json& reference) {
    const auto id = getAnyObjectId(reference);
    const auto found = id ? document.flat.objects.find(*id) : document.flat.objects.end();
    return found == document.flat.objects.end() ? nullptr : &found->second;
}

json newTrack(Reader::JsonDocument& document, unsigned long long timelineId, long long type) {
    json& track = *document.flat.createObject("Timeline::Track");
    track["gapless"] = false;
    track["hidden"] = false;
    track["linked"] = true;
    track["muted"] = false;
    track["timeline"] = document.flat.createRef(timelineId);
    track["type"] = type;
    track["used"] = true;
    return document.flat.createRef(track);
}

} // namespace

std::vector<TimelineClip> clipsOf(Reader::JsonDocument& document, const json& timeline) {
    std::vector<TimelineClip> clips;
    for (const json& entry : Archive::Internal::entriesOf(timeline, "clips")) {
        const json& clip = memberOf(entry, "clip");
        clips.push_back({getAnyObjectId(clip).value_or(0), objectOf(document, clip),
                         objectOf(document, memberOf(entry, "timing"))});
    }
    return clips;
}

std::vector<unsigned long long> tracksOf(const json& timeline) {
    std::vector<unsigned long long> ids;
    for (const json& track : Archive::Internal::entriesOf(timeline, "tracks"))
        ids.push_back(getAnyObjectId(track).value_or(0));
    return ids;
}

long long numberIn(const json& object, const char* key, long long fallback) {
    const json& value = memberOf(object, key);
    return value.is_number_integer() ? value.get<long long>() : fallback;
}

long long TrackTypes::forClip(const json* clip) const {
    switch (clip ? numberIn(*clip, "type") : 0) {
    case titleClip:
        return titles;
    case soundClip:
        return sound;
    default:
        return other;
    }
}

unsigned long long trackFor(Reader::JsonDocument& document, unsigned long long timelineId, long long type,
                            const TrackTypes& types) {
    json& timeline = document.flat.objects.at(timelineId);
    for (const unsigned long long id : tracksOf(timeline)) {
        const auto track = document.flat.objects.find(id);
        if (track != document.flat.objects.end() && numberIn(track->second, "type") == type)
            return id;
    }
    const json reference = newTrack(document, timelineId, type);
    json& tracks = timeline["tracks"];
    if (!tracks.is_array())
        tracks = json::array();
    tracks.insert(type == types.sound ? tracks.end() : tracks.begin(), reference);
    return getAnyObjectId(reference).value();
}

std::set<unsigned long long> timelinesWithQuizzes(Reader::JsonDocument& document) {
    const auto timelines = Archive::Internal::selectObjects(document.flat, "Timeline::Object");
    std::set<unsigned long long> found;
    std::vector<unsigned long long> open;
    if (!timelines.empty())
        open.push_back(timelines.front().id);
    while (!open.empty()) {
        const unsigned long long id = open.back();
        open.pop_back();
        const auto timeline = document.flat.objects.find(id);
        if (timeline == document.flat.objects.end() || !found.insert(id).second)
            continue;
        for (const TimelineClip& clip : clipsOf(document, timeline->second)) {
            const auto nested =
                clip.clip ? getAnyObjectId(memberOf(*clip.clip, "nestedTimeline")) : std::nullopt;
            if (nested)
                open.push_back(*nested);
        }
    }
    return found;
}

} // namespace Repairs
