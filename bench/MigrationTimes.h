#pragma once

#include "bench/Generator.h"

#include <QByteArray>

#include <cstddef>
#include <string>
#include <vector>

namespace Bench {

/// The schema version from which the road is measured: the first that has all its steps before it.
inline constexpr int oldestVersion = 3;

struct Part {
    std::string name;
    double milliseconds = 0;
};

/// Where the time goes for one project of the oldest version.
struct RoadTimes {
    std::size_t elements = 0; ///< of the archive
    std::size_t bytesRead = 0;
    std::size_t bytesWritten = 0;
    std::size_t logLines = 0;
    double load = 0;            ///< text into the DOM
    double write = 0;           ///< the result as JSON text
    double road = 0;            ///< parse, migrate and save, as the program does it
    std::vector<Part> steps;    ///< each in the document that it meets on the road
    std::vector<Part> others;   ///< what else the road does
    std::size_t loadMemory = 0; ///< peak of loading alone
    std::size_t roadMemory = 0; ///< peak of the whole road

    /// What any program needs that reads the one and writes the other.
    double floor() const { return load + write; }
};

/// Measures `runs` times, all parts in turn, and takes the median of each.
RoadTimes measureRoad(const Size& size, int runs);

} // namespace Bench
