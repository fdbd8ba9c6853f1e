#pragma once

#include <cstddef>
#include <iosfwd>

namespace Bench {

/// The versions that are measured.
inline constexpr int recoveryVersions[] = {3, 34, 45, 55, 61, 77};

/// The names of the values that measureRecovery() writes.
void printRecoveryHeader(std::ostream& out);

/// Damages a project of that version with 60 clips in so many places, once by cutting it off and once by a lost block,
/// recovers it, and writes a line of comma-separated values for each: version, damage, place as a share of the file,
/// clips whose objects are whole in the damaged bytes, clips that are recovered, those of them at their own time, and
/// what went wrong. Returns how often something went wrong.
std::size_t measureRecovery(std::ostream& out, int version, int places);

} // namespace Bench
