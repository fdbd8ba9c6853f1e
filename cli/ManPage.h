#pragma once

#include <string>

namespace CLI {
class App;
}

namespace ManPage {

/// The manual page of a command, or of the whole program, with the texts of its help.
std::string of(const CLI::App& app);

} // namespace ManPage
