#pragma once

// What repairs of flat documents share: timelines, their clips and tracks.

#include "Reader/Document.h"

#include <set>
#include <vector>

namespace Repairs {

/// A clip in the list of a timeline.
struct TimelineClip {
    unsigned long long id;
    nlohmann::json* clip;   ///< null if there is no such object
    nlohmann::json* timing; ///< null if there is none
};

/// The clips in the list of a timeline, in order.
std::vector<TimelineClip> clipsOf(Reader::JsonDocument& document, const nlohmann::json& timeline);

/// The ids of the tracks that a timeline lists.
std::vector<unsigned long long> tracksOf(const nlohmann::json& timeline);

/// The value of a member as a number; `fallback` for anything else.
long long numberIn(const nlohmann::json& object, const char* key, long long fallback = 0);

constexpr long long titleClip = 4;
constexpr long long soundClip = 3;
constexpr long long quizClip = 32;

/// The types of the tracks for titles, for sound, and for anything else beside the primary track.
struct TrackTypes {
    long long titles;
    long long sound;
    long long other;

    long long forClip(const nlohmann::json* clip) const;
};

/// Before version 72, and from it on.
inline constexpr TrackTypes numberedTracks = {80, 48, 64};
inline constexpr TrackTypes typedTracks = {16, 4, 8};

/// The id of the timeline's first track of that type. Without one, makes a track: for sound behind all others, else
/// in front of them.
unsigned long long trackFor(Reader::JsonDocument& document, unsigned long long timelineId, long long type,
                            const TrackTypes& types);

/// The timelines from which version 69 removes quizzes: the one of the lowest id, and those nested in it.
std::set<unsigned long long> timelinesWithQuizzes(Reader::JsonDocument& document);

} // namespace Repairs
