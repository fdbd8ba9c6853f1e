#pragma once

#include <string>
#include <vector>

namespace Bench {

/// Runs the benchmarks of single operations, with Google Benchmark's own arguments. Gives the exit code.
int runMicro(std::vector<std::string> arguments);

} // namespace Bench
