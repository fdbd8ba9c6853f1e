#pragma once

#include "Reader/Timeline.h"

#include <cstddef>
#include <utility>
#include <vector>

// Threads: each function reads only its arguments.

namespace Reader {

/// Places of what is the same in two lists.
using Matches = std::vector<std::pair<std::size_t, std::size_t>>;

/// Whether an object keeps its id from one document to the other.
enum class Ids { LiveOn, Renumbered };

/// Which clips of two timelines are the same: those without a change first, then those of one id, then those that have
/// name, file or place in common. Clips of different kinds are never the same. In the order of the first list.
Matches matchClips(const Timeline& before, const Timeline& after);

/// Whether most of the matched clips have the ids that they had.
Ids idsOf(const Matches& matches, const Timeline& before, const Timeline& after);

/// Which effects of two clips are the same: those of one class and name, in order; with ids that live on, those of one
/// id and class first.
Matches matchEffects(const TimelineClip& before, const TimelineClip& after, Ids ids);

} // namespace Reader
