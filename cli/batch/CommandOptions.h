#pragma once

#include "Commands.h"

namespace CLI {
class App;
}

namespace Batch {

/// Adds the options that only `adaptors batch` has.
void addOptions(CLI::App& command, Arguments& arguments);

/// The options that were given to one command and that another one has too, as words of a command line.
std::vector<std::string> sharedOptions(const CLI::App& from, const CLI::App& to);

} // namespace Batch
