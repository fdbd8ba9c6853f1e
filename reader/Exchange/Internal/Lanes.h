#pragma once

#include "Reader/Timeline.h"

#include <cstddef>
#include <map>
#include <optional>
#include <utility>
#include <vector>

// Which clips and transitions follow each other without overlapping.

namespace Reader::Exchange {

/// The transitions at the ends of a clip, by their places in Timeline::transitions.
struct ClipTransitions {
    std::optional<std::size_t> in;
    std::optional<std::size_t> out;
};

/// What can be said of a timeline's transitions.
struct JoinedClips {
    std::map<std::size_t, ClipTransitions> ends; ///< by the place of the clip in Timeline::clips
    std::map<std::size_t, std::size_t> next; ///< the clip that a transition leads to, by the one before it
    std::vector<std::size_t> misplaced;      ///< transitions that join no clips that follow each other
    std::vector<std::size_t> tooLong;        ///< transitions that are longer than a clip has space for
};

/// Finds out which transitions lie between clips of one level of a track where one ends and the other starts, or at
/// the end of a single clip. `isPlaced` says which clips count.
JoinedClips joinClips(const Timeline& timeline, const std::vector<bool>& isPlaced);

/// The clips of a line that follow each other, by start.
using Lane = std::vector<std::size_t>;

/// Distributes clips of one level of a track to lanes in which none overlaps another: each to the first lane that is
/// free, but the second clip of a transition to the lane of the first.
std::vector<Lane> lanesOf(const Timeline& timeline, std::vector<std::size_t> clips,
                          const JoinedClips& joined);

} // namespace Reader::Exchange
