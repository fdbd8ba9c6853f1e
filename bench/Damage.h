#pragma once

#include <QByteArray>

#include <map>
#include <set>
#include <string>

// Damaged projects, and what can be expected of their recovery.

namespace Bench {

using ClipIds = std::set<unsigned long long>;

/// A healthy project with exactly so many clips: an archive of version 3 to 62, or JSON of the newest version. A sample
/// whose clips are repeated. The same arguments give the same bytes.
QByteArray projectWithClips(int version, std::size_t clips);

/// The size of a block of a disk.
inline constexpr int blockSize = 512;

/// The project with a block of NUL bytes from that place on, or up to its end.
QByteArray withLostBlock(QByteArray project, int place);

/// The clips whose objects are whole in the bytes, by a search of the bytes for their starts and ends.
ClipIds wholeClips(const QByteArray& bytes);

/// What a healthy project has, for comparisons.
struct Healthy {
    explicit Healthy(const QByteArray& project);

    ClipIds clips;                                 ///< in its timelines
    std::map<unsigned long long, long long> times; ///< where they begin
    ClipIds migrated; ///< those that are in the timelines after a migration to the newest version
};

/// How a damaged project fared.
struct Rescue {
    std::size_t whole = 0;     ///< clips of the project whose objects are whole in the damaged bytes
    std::size_t recovered = 0; ///< clips of the project that are in the recovered document
    std::size_t inPlace = 0;   ///< of those, the clips with their own time
    std::string problem;       ///< what went wrong; empty for nothing
};

/// Recovers a damaged project, migrates it to the newest version, reads the result, and verifies it.
Rescue rescue(const QByteArray& damaged, const Healthy& healthy);

} // namespace Bench
