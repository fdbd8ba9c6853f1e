#pragma once

#include <string>

namespace CLI {
class App;
}

/// Scripts with which shells complete the program's command lines: its commands and options, names of steps, files and
/// folders.
namespace Completions {

std::string forBash(const CLI::App& app);
std::string forZsh(const CLI::App& app);
std::string forFish(const CLI::App& app);

} // namespace Completions
