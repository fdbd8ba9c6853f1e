#pragma once

#include "bench/MigrationTimes.h"

#include <iosfwd>
#include <vector>

namespace Bench {

/// Prints projects of several sizes side by side, smallest first, with how fast each time grows.
void printTable(std::ostream& out, const std::vector<MigrationTimes>& projects);

} // namespace Bench
