#include "ManPage.h"

#include "Help.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <sstream>

namespace ManPage {
namespace {

/// A text as it is, whatever the formatter would read in it.
std::string plain(const std::string& text) {
    std::string result;
    for (const char c : text) {
        switch (c) {
        case '\\':
            result += "\\e";
            break;
        case '-':
            result += "\\-"; // a hyphen that can be copied into a shell
            break;
        case '\'':
            result += "\\(aq";
            break;
        case '^':
            result += "\\(ha";
            break;
        case '~':
            result += "\\(ti";
            break;
        case '`':
            result += "\\(ga";
            break;
        default:
            result += c;
        }
    }
    return result.starts_with('.') ? "\\&" + result : result;
}

std::string bold(const std::string& text) {
    return "\\fB" + plain(text) + "\\fR";
}

std::string withoutIndent(const std::string& text) {
    return text.substr(std::min(text.find_first_not_of(' '), text.size()));
}

/// A row without a text is a paragraph.
std::string rowsOf(const std::vector<Help::Row>& rows) {
    std::string result;
    for (const Help::Row& row : rows)
        result += (row.text.empty() ? ".PP\n" : ".TP\n") + bold(withoutIndent(row.name)) + '\n' +
                  (row.text.empty() ? "" : plain(row.text) + '\n');
    return result;
}

std::string capitals(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

std::string section(const std::string& title) {
    return ".SH " + capitals(title) + '\n';
}

/// "adaptors-migrate"
std::string pageName(std::string name) {
    std::replace(name.begin(), name.end(), ' ', '-');
    return name;
}

/// The description as lists of pages show it: without a full stop.
std::string summary(const std::string& description) {
    return description.substr(0, description.size() - (description.ends_with('.') ? 1 : 0));
}

/// A line that ends with ":" is the title of a section, one with a tab a row, and each other line a paragraph.
std::string footerOf(const std::string& footer) {
    std::istringstream lines(footer);
    std::string result;
    for (std::string line; std::getline(lines, line);) {
        const auto tab = line.find('\t');
        if (tab != std::string::npos)
            result += rowsOf({{line.substr(0, tab), line.substr(tab + 1)}});
        else if (line.ends_with(':'))
            result += section(line == "Exit codes:" ? "Exit status" : line.substr(0, line.size() - 1));
        else if (!line.empty())
            result += ".PP\n" + plain(line) + '\n';
    }
    return result;
}

/// The first paragraph of a section needs no mark.
std::string withoutEmptyParagraphs(const std::string& page) {
    std::istringstream lines(page);
    std::string result;
    bool isTitle = false;
    for (std::string line; std::getline(lines, line);) {
        if (!isTitle || line != ".PP")
            result += line + '\n';
        isTitle = line.starts_with(".SH ") || line.starts_with(".SS ");
    }
    return result;
}

/// The program's page names those of all commands, and each of these the program's.
std::string relatedPages(const CLI::App& app) {
    std::string result;
    const auto add = [&result](const CLI::App& other) {
        result += (result.empty() ? "" : ",\n") + bold(pageName(Help::textsOf(other).name)) + "(1)";
    };
    if (app.get_parent() != nullptr)
        add(*app.get_parent());
    for (const CLI::App* command : Help::listedCommands(app))
        add(*command);
    return result + '\n';
}

} // namespace

std::string of(const CLI::App& app) {
    const Help::Texts texts = Help::textsOf(app);
    std::string page = ".TH " + capitals(pageName(texts.name)) +
                       " 1 " ADAPTORS_DATE " \"adaptors " ADAPTORS_VERSION "\" \"User Commands\"\n";
    page +=
        section("Name") + plain(pageName(texts.name)) + " \\- " + plain(summary(texts.description)) + '\n';
    page += section("Synopsis") + bold(texts.name) + plain(texts.usage.substr(texts.name.size())) + '\n';
    page += section("Description") + plain(texts.description) + '\n';
    // What the footer says before its first title belongs to the description.
    const std::string footer = footerOf(texts.footer);
    const auto titles = std::min(footer.starts_with(".SH ") ? 0 : footer.find("\n.SH ") + 1, footer.size());
    page += footer.substr(0, titles);
    if (!texts.commands.empty())
        page += section("Commands") + rowsOf(texts.commands);
    bool hasOptions = false;
    for (const auto& [title, rows] : texts.arguments) {
        const bool isOption = title != "Arguments";
        if (isOption && !hasOptions)
            page += section("Options");
        hasOptions = hasOptions || isOption;
        if (!isOption)
            page += section(title);
        else if (title != "Options")
            page += ".SS " + plain(title) + '\n';
        page += rowsOf(rows);
    }
    page += footer.substr(titles);
    return withoutEmptyParagraphs(page + section("See also") + relatedPages(app));
}

} // namespace ManPage
