#include "Help.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <sstream>
#include <vector>

namespace Help {
namespace {

/// A name and what is said of it.
struct Row {
    std::string name;
    std::string text;
};

/// Breaks a paragraph between words. The first line begins at column `at`, where the text before it ended; the others
/// are indented by `indent`.
std::string wrapped(const std::string& text, std::size_t at, std::size_t indent, std::size_t width) {
    std::istringstream words(text);
    std::string result;
    std::string word;
    std::size_t column = at;
    bool isFirst = true;
    while (words >> word) {
        if (!isFirst && column + 1 + word.size() > width) {
            result += '\n' + std::string(indent, ' ');
            column = indent;
            isFirst = true;
        }
        result += (isFirst ? "" : " ") + word;
        column += word.size() + (isFirst ? 0 : 1);
        isFirst = false;
    }
    return result + '\n';
}

/// Rows of two columns; a name that is too long for its column has its text on the next line.
std::string table(const std::vector<Row>& rows, std::size_t width) {
    constexpr std::size_t margin = 2;
    const std::size_t greatest = width * 2 / 5;
    std::size_t second = 0;
    for (const Row& row : rows) {
        const std::size_t end = margin + row.name.size() + 2;
        if (end <= greatest)
            second = std::max(second, end);
    }
    second = second == 0 ? greatest / 2 : second;
    std::string result;
    for (const Row& row : rows) {
        result += std::string(margin, ' ') + row.name;
        const std::size_t end = margin + row.name.size();
        if (row.text.empty())
            result += '\n';
        else if (end + 2 <= second)
            result += std::string(second - end, ' ') + wrapped(row.text, second, second, width);
        else
            result += '\n' + std::string(second, ' ') + wrapped(row.text, second, second, width);
    }
    return result;
}

std::string titled(const std::string& title, const std::vector<Row>& rows, std::size_t width) {
    return rows.empty() ? std::string() : '\n' + title + ":\n" + table(rows, width);
}

/// "-o, --output FILE"; names without a short one are indented by its width.
Row rowFor(const CLI::Option& option) {
    if (option.get_positional())
        return {option.get_name(true), option.get_description()};
    std::string name = option.get_snames().empty() ? "    " : '-' + option.get_snames().front();
    if (!option.get_lnames().empty())
        name += (option.get_snames().empty() ? "--" : ", --") + option.get_lnames().front();
    if (option.get_type_size() != 0)
        name += ' ' + option.get_type_name();
    return {name, option.get_description()};
}

std::vector<Row> rowsFor(const std::vector<const CLI::Option*>& options) {
    std::vector<Row> rows;
    std::transform(options.begin(), options.end(), std::back_inserter(rows),
                   [](const CLI::Option* option) { return rowFor(*option); });
    return rows;
}

/// The options of a group, without the help option that every command has.
std::vector<Row> groupRows(const CLI::App& app, const std::string& group) {
    return rowsFor(app.get_options([&](const CLI::Option* option) {
        return option->get_group() == group && option->nonpositional() &&
               (app.get_parent() == nullptr || option != app.get_help_ptr());
    }));
}

std::string nameOf(const CLI::App& app) {
    return app.get_parent() ? nameOf(*app.get_parent()) + ' ' + app.get_name() : app.get_name();
}

std::string usageOf(const CLI::App& app, const std::vector<const CLI::Option*>& positionals) {
    if (app.get_parent() == nullptr)
        return nameOf(app) + " COMMAND [OPTIONS] ...";
    std::string usage = nameOf(app) + " [OPTIONS]";
    for (const CLI::Option* option : positionals)
        usage += ' ' + (option->get_required() ? option->get_name(true) : '[' + option->get_name(true) + ']');
    return usage;
}

std::vector<Row> commandRows(const CLI::App& app) {
    std::vector<Row> rows;
    for (const CLI::App* command : app.get_subcommands({}))
        rows.push_back({command->get_name(), command->get_description()});
    return rows;
}

/// Lines with tabs that follow each other are one table.
std::string footerOf(const CLI::App& app, std::size_t width) {
    std::istringstream lines(app.get_footer());
    std::string result;
    std::vector<Row> rows;
    const auto endTable = [&] {
        result += table(rows, width);
        rows.clear();
    };
    for (std::string line; std::getline(lines, line);) {
        const auto tab = line.find('\t');
        if (tab != std::string::npos) {
            rows.push_back({line.substr(0, tab), line.substr(tab + 1)});
            continue;
        }
        endTable();
        result += wrapped(line, 0, 0, width);
    }
    endTable();
    return result.empty() ? result : '\n' + result;
}

} // namespace

std::string of(const CLI::App& app, int width) {
    const auto columns = static_cast<std::size_t>(width);
    const auto positionals =
        app.get_options([](const CLI::Option* option) { return option->get_positional(); });
    std::string text = wrapped(app.get_description(), 0, 0, columns);
    text += "\nUsage: " + usageOf(app, positionals) + '\n';
    text += titled("Commands", commandRows(app), columns);
    text += titled("Arguments", rowsFor(positionals), columns);
    for (const std::string& group : app.get_groups())
        text += titled(group, groupRows(app, group), columns);
    if (const CLI::App* program = app.get_parent()) {
        for (const std::string& group : program->get_groups())
            text += titled(group, groupRows(*program, group), columns);
    }
    return text + footerOf(app, columns);
}

std::string ofAll(const CLI::App& app, int width) {
    std::string text = of(app, width);
    for (const CLI::App* command : app.get_subcommands({}))
        text += '\n' + std::string(static_cast<std::size_t>(width), '-') + "\n\n" + of(*command, width);
    return text;
}

} // namespace Help
