#pragma once

#include <cstddef>
#include <iosfwd>

namespace Bench {

/// Damages projects of several versions with 60 clips, recovers them, and writes a line of comma-separated values for
/// each: version, damage, place as a share of the file, clips whose objects are whole in the damaged bytes, clips that
/// are recovered, those of them at their own time, and what went wrong. `places` is the number of cuts, and that of
/// lost blocks, of each version. Returns how often something went wrong.
std::size_t measureRecovery(std::ostream& out, int places);

} // namespace Bench
