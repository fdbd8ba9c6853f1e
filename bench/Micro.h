#pragma once

#include <string>
#include <vector>

namespace Bench {

/// Runs the benchmarks of single operations. The arguments are those of Google Benchmark. Gives the exit
/// code.
int runMicro(std::vector<std::string> arguments);

} // namespace Bench
