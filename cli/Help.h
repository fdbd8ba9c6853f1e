#pragma once

#include <string>

namespace CLI {
class App;
}

namespace Help {

/// The group of commands that are not listed.
inline constexpr const char* hidden = "";
bool isHidden(const CLI::App& command);

/// The help of a command, or of the whole program, with no line longer than `width`. In an app's footer a line with a
/// tab has two columns, and each other line is a paragraph.
std::string of(const CLI::App& app, int width);

/// The help of the program and of each command.
std::string ofAll(const CLI::App& app, int width);

} // namespace Help
