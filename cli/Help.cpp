#include "Help.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <sstream>
#include <utility>
#include <vector>

namespace Help {
namespace {

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

constexpr std::size_t margin = 2; ///< in front of a table
constexpr std::size_t gap = 2;    ///< between its columns, at least
constexpr std::size_t indent = 4; ///< of a text below its name, at least

/// Where the second column begins: behind the longest name that leaves half of the line to it. Where all names are too
/// long, their texts are indented below them.
std::size_t secondColumn(const std::vector<Row>& rows, std::size_t width) {
    std::size_t column = margin + indent;
    for (const Row& row : rows) {
        const std::size_t end = margin + row.name.size() + gap;
        if (end <= width / 2)
            column = std::max(column, end);
    }
    return column;
}

/// Rows of two columns; a name that is too long for its column has its text on the next line.
std::string table(const std::vector<Row>& rows, std::size_t second, std::size_t width) {
    std::string result;
    for (const Row& row : rows) {
        result += std::string(margin, ' ') + row.name;
        const std::size_t end = margin + row.name.size();
        const bool fits = end + gap <= second;
        if (row.text.empty())
            result += '\n';
        else
            result += (fits ? std::string(second - end, ' ') : '\n' + std::string(second, ' ')) +
                      wrapped(row.text, second, second, width);
    }
    return result;
}

/// Tables with titles whose columns begin at the same place.
std::string tables(const std::vector<Table>& titled, std::size_t width) {
    std::vector<Row> all;
    for (const auto& [title, rows] : titled)
        all.insert(all.end(), rows.begin(), rows.end());
    const std::size_t second = secondColumn(all, width);
    std::string result;
    for (const auto& [title, rows] : titled) {
        if (!rows.empty())
            result += '\n' + wrapped(title + ':', 0, 0, width) + table(rows, second, width);
    }
    return result;
}

} // namespace

bool takesValue(const CLI::Option& option) {
    return option.get_items_expected_max() != 0;
}

namespace {

/// "-o, --output FILE"; names without a short one are indented by its width.
Row rowFor(const CLI::Option& option) {
    if (option.get_positional())
        return {option.get_name(true), option.get_description()};
    std::string name = option.get_snames().empty() ? "    " : '-' + option.get_snames().front();
    if (!option.get_lnames().empty())
        name += (option.get_snames().empty() ? "--" : ", --") + option.get_lnames().front();
    if (takesValue(option))
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
               (app.get_parent() == nullptr ||
                (option != app.get_help_ptr() && option != app.get_help_all_ptr()));
    }));
}

std::string nameOf(const CLI::App& app) {
    return app.get_parent() ? nameOf(*app.get_parent()) + ' ' + app.get_name() : app.get_name();
}

std::string usageOf(const CLI::App& app, const std::vector<const CLI::Option*>& positionals) {
    if (app.get_parent() == nullptr)
        return nameOf(app) + " COMMAND [OPTIONS] ...";
    std::string usage = nameOf(app) + " [OPTIONS]";
    for (const CLI::Option* option : positionals) {
        const std::string name = option->get_name(true) + (option->get_items_expected_max() > 1 ? "..." : "");
        usage += ' ' + (option->get_required() ? name : '[' + name + ']');
    }
    return usage;
}

std::vector<Row> commandRows(const CLI::App& app) {
    std::vector<Row> rows;
    for (const CLI::App* command : listedCommands(app))
        rows.push_back({command->get_name(), command->get_description()});
    return rows;
}

/// Lines with tabs that follow each other are one table.
std::string footerOf(const std::string& footer, std::size_t width) {
    std::istringstream lines(footer);
    std::string result;
    std::vector<Row> rows;
    const auto endTable = [&] {
        result += table(rows, secondColumn(rows, width), width);
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

std::vector<const CLI::App*> listedCommands(const CLI::App& app) {
    return app.get_subcommands([](const CLI::App* command) { return command->get_group() != hidden; });
}

Texts textsOf(const CLI::App& app) {
    const auto positionals =
        app.get_options([](const CLI::Option* option) { return option->get_positional(); });
    Texts texts{nameOf(app), app.get_description(), usageOf(app, positionals), commandRows(app),
                {},          app.get_footer()};
    texts.arguments.emplace_back("Arguments", rowsFor(positionals));
    for (const CLI::App* from : {&app, app.get_parent()}) {
        if (!from)
            continue;
        for (const std::string& group : from->get_groups()) {
            if (!group.empty()) // options without a group are hidden
                texts.arguments.emplace_back(group, groupRows(*from, group));
        }
    }
    std::erase_if(texts.arguments, [](const Table& table) { return table.second.empty(); });
    return texts;
}

std::string of(const CLI::App& app, int width) {
    const auto columns = static_cast<std::size_t>(width);
    const Texts texts = textsOf(app);
    return wrapped(texts.description, 0, 0, columns) + "\nUsage: " + texts.usage + '\n' +
           tables({{"Commands", texts.commands}}, columns) + tables(texts.arguments, columns) +
           footerOf(texts.footer, columns);
}

std::string ofAll(const CLI::App& app, int width) {
    std::string text = of(app, width);
    for (const CLI::App* command : listedCommands(app))
        text += '\n' + std::string(static_cast<std::size_t>(width), '-') + "\n\n" + of(*command, width);
    return text;
}

} // namespace Help
