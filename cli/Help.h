#pragma once

#include <string>
#include <utility>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace Help {

/// A name and what is said of it.
struct Row {
    std::string name;
    std::string text;
};

/// Rows with a title.
using Table = std::pair<std::string, std::vector<Row>>;

/// What the help of a command, or of the whole program, consists of.
struct Texts {
    std::string name; ///< "adaptors migrate"
    std::string description;
    std::string usage; ///< "adaptors migrate [OPTIONS] FILE"
    std::vector<Row> commands;
    std::vector<Table> arguments; ///< and options by group
    std::string footer;           ///< a line with a tab has two columns, and each other line is a paragraph
};

Texts textsOf(const CLI::App& app);

/// Whether it is no flag.
bool takesValue(const CLI::Option& option);

/// The group of commands that are not listed.
inline constexpr const char* hidden = "";
/// The commands that are.
std::vector<const CLI::App*> listedCommands(const CLI::App& app);

/// The help of a command, or of the whole program, with no line longer than `width`.
std::string of(const CLI::App& app, int width);

/// The help of the program and of each command.
std::string ofAll(const CLI::App& app, int width);

} // namespace Help
