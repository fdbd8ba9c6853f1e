#pragma once

#include <QString>

#include <string>
#include <string_view>

/// What the program knows of the terminal that it writes to.
namespace Terminal {

/// A text that comes from a document, a file name or an error, as people are shown it: on one line, and without any
/// character that a terminal would obey. These are written as escapes: control characters (`\n`, `\t`, `\r`, `\x1b`,
/// `\u0085`), characters that change the direction of text (`\u202e`), line and paragraph separators, and bytes that are
/// no UTF-8 (`\xff`). Everything else stays, backslashes too.
std::string escaped(std::string_view text);
std::string escaped(const QString& text);

/// When output is coloured.
enum class ColourChoice { Auto, Always, Never };

/// The choice comes first, then NO_COLOR, then CLICOLOR_FORCE; without any of them only terminals get colours.
bool isColoured(ColourChoice choice, int descriptor);

/// Whether the stream is a terminal that obeys escape sequences.
bool isCapable(int descriptor);

/// The number of characters on a line, 60 to 1000: COLUMNS, or the terminal's own; 80 where there is neither.
int width(int descriptor);

/// Words in colour, or as they are.
class Colours {
public:
    explicit Colours(bool isOn = false) : m_isOn(isOn) {}

    std::string red(std::string_view text) const { return in("\x1b[31m", text); }
    std::string yellow(std::string_view text) const { return in("\x1b[33m", text); }

private:
    std::string in(const char* code, std::string_view text) const;

    bool m_isOn;
};

} // namespace Terminal
