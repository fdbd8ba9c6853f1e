#include "TimelineDrawing.h"

#include "Phrases.h"
#include "Terminal.h"
#include "TimelineLanes.h"

#include <langinfo.h>
#include <locale.h>
#include <wchar.h>

#include <algorithm>
#include <cstring>
#include <string_view>
#include <vector>

using Reader::Timeline;
using Reader::TimelineClip;
using TimelineLanes::Lane;
using TimelineLanes::markText;
using TimelineLanes::Scale;

namespace TimelineDrawing {
namespace {

constexpr std::size_t labelWidth = 10;
constexpr std::size_t mostLanes = 48;

struct Signs {
    std::string_view start, end, fill, single, several, transition, tick, line;
};

constexpr Signs asciiSigns = {"[", "]", "-", "|", "#", "x", "|", "-"};
constexpr Signs utf8Signs = {"├", "┤", "─", "│", "▒", "╳", "┬", "─"};

const Signs& signsOf(const Style& style) {
    return style.isUtf8 ? utf8Signs : asciiSigns;
}

/// The locale of the environment, for one thread and for as long as this exists.
class EnvironmentLocale {
public:
    EnvironmentLocale() : m_locale(newlocale(LC_CTYPE_MASK, "", nullptr)) {
        if (m_locale)
            m_previous = uselocale(m_locale);
    }
    ~EnvironmentLocale() {
        if (m_locale) {
            uselocale(m_previous);
            freelocale(m_locale);
        }
    }
    EnvironmentLocale(const EnvironmentLocale&) = delete;
    EnvironmentLocale& operator=(const EnvironmentLocale&) = delete;

    bool isUtf8() const { return m_locale && std::strcmp(nl_langinfo_l(CODESET, m_locale), "UTF-8") == 0; }

private:
    locale_t m_locale;
    locale_t m_previous = {};
};

/// One line of the picture, column by column. A column of a character that is two wide is empty behind it.
class Line {
public:
    explicit Line(std::size_t width) : m_cells(width, " ") {}

    void put(std::size_t column, std::string_view sign) {
        if (column < m_cells.size())
            m_cells[column] = sign;
    }
    /// Puts as much of a text as fits before column `end`, and gives the column behind it. The text must be escaped.
    std::size_t write(std::size_t column, std::size_t end, std::string_view text, bool isUtf8) {
        end = std::min(end, m_cells.size());
        while (!text.empty()) {
            const std::size_t size = sizeOfFirst(text);
            const std::string_view character = text.substr(0, size);
            const std::size_t width = isUtf8 ? widthOf(character) : 1;
            if (column + width > end)
                break;
            if (width == 0 && column > 0)
                m_cells[column - 1] += character;
            else if (width > 0)
                m_cells[column] = isUtf8 || size == 1 ? character : "?";
            for (std::size_t more = 1; more < width; ++more)
                m_cells[column + more].clear();
            column += width;
            text.remove_prefix(size);
        }
        return column;
    }
    std::string text() const {
        std::string line;
        for (const std::string& cell : m_cells)
            line += cell;
        line.erase(line.find_last_not_of(' ') + 1);
        return line;
    }

private:
    static std::size_t sizeOfFirst(std::string_view text) {
        std::size_t size = 1;
        while (size < text.size() && (static_cast<unsigned char>(text[size]) & 0xc0U) == 0x80)
            ++size;
        return size;
    }
    static std::size_t widthOf(std::string_view character) {
        std::mbstate_t state = {};
        wchar_t code = 0;
        const std::size_t size = mbrtowc(&code, character.data(), character.size(), &state);
        const int width = size == character.size() ? wcwidth(code) : 1;
        return static_cast<std::size_t>(std::max(width, 0));
    }

    std::vector<std::string> m_cells;
};

/// The column of a place.
std::size_t columnOf(double place) {
    return static_cast<std::size_t>(place);
}

std::string ruler(const Scale& scale, const Style& style, std::size_t columns) {
    constexpr double columnsBetweenMarks = 11;
    Line times(columns);
    Line ticks(columns);
    for (std::size_t column = 0; column < columns; ++column)
        ticks.put(column, signsOf(style).line);
    const double step = scale.stepFor(columnsBetweenMarks);
    for (const double time : scale.marks(step)) {
        const std::size_t column = columnOf(scale.placeOf(static_cast<long long>(time)));
        times.write(column, columns, markText(time, step), style.isUtf8);
        ticks.put(column, signsOf(style).tick);
    }
    const std::string margin(labelWidth, ' ');
    return margin + times.text() + '\n' + margin + ticks.text() + '\n';
}

void drawClip(Line& line, const TimelineClip& clip, const Scale& scale, const Style& style,
              std::vector<bool>& taken) {
    const Signs& signs = signsOf(style);
    const std::size_t columns = taken.size();
    std::size_t begin = std::min(columnOf(scale.placeOf(clip.start)), columns - 1);
    const std::size_t end = std::clamp(columnOf(scale.placeOf(clip.end())), begin + 1, columns);
    if (taken[begin] && end - begin > 1)
        ++begin;
    if (end - begin == 1) {
        line.put(begin, taken[begin] ? signs.several : signs.single);
        taken[begin] = true;
        return;
    }
    for (std::size_t column = begin; column < end; ++column)
        line.put(column, signs.fill);
    line.put(begin, signs.start);
    line.put(end - 1, signs.end);
    taken[begin] = taken[end - 1] = true;
    const std::string name = Phrases::shortText(clip.name, columns) + (clip.effects.empty() ? "" : "*");
    if (end - begin > 3)
        line.write(begin + 1, end - 1, name, style.isUtf8);
}

std::string padded(const std::string& label) {
    std::string text = label.substr(0, labelWidth - 1);
    return text + std::string(labelWidth - text.size(), ' ');
}

} // namespace

Style styleFor(int descriptor) {
    return {Terminal::width(descriptor), EnvironmentLocale().isUtf8()};
}

std::string draw(const Timeline& timeline, const Style& style) {
    const EnvironmentLocale locale; // for the widths of characters
    const std::size_t columns = static_cast<std::size_t>(std::max(style.width, 40)) - labelWidth - 1;
    const Scale scale(timeline, static_cast<double>(columns));
    std::string text = ruler(scale, style, columns);
    const std::vector<Lane> lanes = TimelineLanes::lanesOf(timeline);
    const auto marks = TimelineLanes::marksOf(timeline, lanes);
    for (std::size_t number = 0; number < std::min(lanes.size(), mostLanes); ++number) {
        Line line(columns);
        std::vector<bool> taken(columns);
        for (const TimelineClip* clip : lanes[number].clips)
            drawClip(line, *clip, scale, style, taken);
        for (const TimelineLanes::Mark& mark : marks[number])
            line.put(std::min(columnOf(scale.placeOf(mark.time)), columns - 1), signsOf(style).transition);
        text += padded(lanes[number].label) + line.text() + '\n';
        text.erase(text.find_last_not_of(" \n") + 1);
        text += '\n';
    }
    if (lanes.size() > mostLanes)
        text += "and " + Phrases::plural(lanes.size() - mostLanes, "line") + " more\n";
    return text;
}

std::string legend(const Style& style) {
    const Signs& signs = signsOf(style);
    return std::string(signs.transition) + " transition, * effects, " + std::string(signs.several) +
           " several clips in one place\n";
}

} // namespace TimelineDrawing
