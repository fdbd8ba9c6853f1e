#pragma once

#include "bench/MigrationTimes.h"

#include <iosfwd>
#include <vector>

namespace Bench {

/// Prints the times of projects of several sizes in columns, smallest first, and the growth of each time.
void printTable(std::ostream& out, const std::vector<MigrationTimes>& projects);

} // namespace Bench
