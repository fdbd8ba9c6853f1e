#include "Terminal.h"

#include "FileNames.h"
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

namespace Terminal {
namespace {

constexpr int leastWidth = 60;
constexpr int usualWidth = 80;
constexpr int mostWidth = 1000;

/// A character of a UTF-8 text and the number of its bytes; 0 bytes for what is no UTF-8.
struct Character {
    char32_t code = 0;
    std::size_t size = 0;
};

Character firstOf(std::string_view text) {
    const auto byte = [text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned char first = byte(0);
    if (first < 0x80)
        return {first, 1};
    const std::size_t size = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
    if (first < 0xc2 || first > 0xf4 || text.size() < size)
        return {};
    char32_t code = first & (0x7fU >> size);
    for (std::size_t at = 1; at < size; ++at) {
        if ((byte(at) & 0xc0U) != 0x80)
            return {};
        code = code << 6U | (byte(at) & 0x3fU);
    }
    constexpr std::array<char32_t, 5> least = {0, 0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = code >= 0xd800 && code <= 0xdfff;
    if (code < least[size] || code > 0x10ffff || isSurrogate)
        return {};
    return {code, size};
}

struct Range {
    char32_t first;
    char32_t last;
};

/// Beside the control characters below 0xa0.
constexpr Range escapedRanges[] = {
    {0x061c, 0x061c}, // Arabic letter mark
    {0x200e, 0x200f}, // marks of direction
    {0x2028, 0x2029}, // line and paragraph separators
    {0x202a, 0x202e}, // embeddings and overrides of direction
    {0x2066, 0x2069}, // isolates of direction
    {0xfeff, 0xfeff}, // byte order mark, which has no width
};

bool isEscaped(char32_t code) {
    return code < 0x20 || (code >= 0x7f && code < 0xa0) ||
           std::any_of(std::begin(escapedRanges), std::end(escapedRanges),
                       [code](const Range& range) { return code >= range.first && code <= range.last; });
}

std::string number(const char* format, unsigned int value) {
    std::array<char, 16> text = {};
    std::snprintf(text.data(), text.size(), format, value);
    return text.data();
}

std::string escapeOf(char32_t code) {
    switch (code) {
    case '\n':
        return "\\n";
    case '\t':
        return "\\t";
    case '\r':
        return "\\r";
    default:
        return number(code < 0x80 ? "\\x%02x" : "\\u%04x", code);
    }
}

/// The value of a variable; empty where it is not set.
std::string_view environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

} // namespace

std::string escaped(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const Character character = firstOf(text);
        if (character.size == 0)
            result += number("\\x%02x", static_cast<unsigned char>(text.front()));
        else if (isEscaped(character.code))
            result += escapeOf(character.code);
        else
            result += text.substr(0, character.size);
        text.remove_prefix(std::max<std::size_t>(character.size, 1));
    }
    return result;
}

std::string escaped(const QString& text) {
    return escaped(FileNames::bytesOf(text));
}

bool isCapable(int descriptor) {
    return isatty(descriptor) != 0 && environment("TERM") != "dumb";
}

bool isColoured(ColourChoice choice, int descriptor) {
    if (choice != ColourChoice::Auto)
        return choice == ColourChoice::Always;
    if (!environment("NO_COLOR").empty())
        return false;
    const std::string_view force = environment("CLICOLOR_FORCE");
    return (!force.empty() && force != "0") || isCapable(descriptor);
}

int width(int descriptor) {
    int columns = std::atoi(environment("COLUMNS").data());
    winsize size = {};
    if (columns <= 0 && ioctl(descriptor, TIOCGWINSZ, &size) == 0)
        columns = size.ws_col;
    return std::clamp(columns > 0 ? columns : usualWidth, leastWidth, mostWidth);
}

std::string Colours::in(const char* code, std::string_view text) const {
    return m_isOn ? std::string(code).append(text).append("\x1b[0m") : std::string(text);
}

} // namespace Terminal
