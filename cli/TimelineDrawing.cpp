#include "TimelineDrawing.h"

#include "Phrases.h"
#include "Terminal.h"

#include <langinfo.h>
#include <locale.h>
#include <wchar.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <string_view>
#include <unordered_map>

using Reader::Timeline;
using Reader::TimelineClip;

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

/// Columns of times.
class Scale {
public:
    Scale(const Timeline& timeline, std::size_t columns) : m_columns(columns) {
        for (const TimelineClip& clip : timeline.clips)
            m_first = std::min(m_first, static_cast<double>(clip.start));
        m_length = std::max(static_cast<double>(timeline.duration()) - m_first, 1.0);
    }

    std::size_t columnOf(double time) const {
        const double column = (time - m_first) * static_cast<double>(m_columns) / m_length;
        return static_cast<std::size_t>(std::clamp(column, 0.0, static_cast<double>(m_columns)));
    }
    /// The time between two marks that leaves so many columns between them.
    double stepFor(std::size_t columns) const {
        constexpr double second = 1000;
        constexpr double hour = 3600 * second;
        constexpr std::array steps = {0.01,  0.02,   0.05,   0.1,    0.2,     0.5,     1.0,    2.0,
                                      5.0,   10.0,   15.0,   30.0,   60.0,    120.0,   300.0,  600.0,
                                      900.0, 1800.0, 3600.0, 7200.0, 14400.0, 21600.0, 43200.0};
        const double least = m_length * static_cast<double>(columns) / static_cast<double>(m_columns);
        for (const double step : steps) {
            if (step * second >= least)
                return step * second;
        }
        double step = 24 * hour;
        while (step < least)
            step *= 2;
        return step;
    }
    double first() const { return m_first; }
    double last() const { return m_first + m_length; }

private:
    std::size_t m_columns;
    double m_first = 0;
    double m_length = 1;
};

/// "0:30", "1:05:00", or "0:00.5" where marks stand closer than a second
std::string markText(double time, double step) {
    const auto milliseconds = static_cast<unsigned long long>(time + 0.5);
    const auto two = [](unsigned long long n) { return (n < 10 ? "0" : "") + std::to_string(n); };
    const unsigned long long hours = milliseconds / 3600000;
    const unsigned long long minutes = milliseconds / 60000 % 60;
    std::string text = hours > 0 ? std::to_string(hours) + ':' + two(minutes) : std::to_string(minutes);
    text += ':' + two(milliseconds / 1000 % 60);
    if (step < 1000)
        text += '.' + two(milliseconds / 10 % 100);
    return text;
}

std::string ruler(const Scale& scale, const Style& style, std::size_t columns) {
    constexpr std::size_t leastColumnsBetweenMarks = 11;
    Line times(columns);
    Line ticks(columns);
    for (std::size_t column = 0; column < columns; ++column)
        ticks.put(column, signsOf(style).line);
    const double step = scale.stepFor(leastColumnsBetweenMarks);
    const double start = scale.first() < 0 ? 0 : scale.first();
    for (double time = start; time < scale.last(); time += step) {
        const std::size_t column = scale.columnOf(time);
        times.write(column, columns, markText(time, step), style.isUtf8);
        ticks.put(column, signsOf(style).tick);
    }
    const std::string margin(labelWidth, ' ');
    return margin + times.text() + '\n' + margin + ticks.text() + '\n';
}

/// The clips on a line.
struct Lane {
    std::string label;
    std::vector<const TimelineClip*> clips; ///< by start
};

/// Ends of clips at which the next one may begin earlier, because a transition leads to it.
using Overlaps = std::unordered_map<unsigned long long, long long>;

std::vector<Lane> lanesOf(const Timeline& timeline) {
    // Upper levels first, as upper tracks.
    std::map<std::pair<std::size_t, long long>, std::vector<const TimelineClip*>> places;
    for (std::size_t track = 0; track < timeline.tracks.size(); ++track)
        places[{track, 0}];
    for (const TimelineClip& clip : timeline.clips)
        places[{clip.track, clip.level}].push_back(&clip);
    Overlaps overlaps;
    for (const Reader::TimelineTransition& transition : timeline.transitions)
        overlaps[transition.from] = transition.duration;
    std::vector<Lane> lanes;
    for (auto& [place, clips] : places) {
        const auto& [track, level] = place;
        std::stable_sort(clips.begin(), clips.end(),
                         [](const TimelineClip* a, const TimelineClip* b) { return a->start < b->start; });
        std::string label(nameOf(timeline.tracks[track].kind));
        label += level == 0 ? "" : " " + std::to_string(level);
        const std::size_t first = lanes.size();
        lanes.push_back({label, {}});
        for (const TimelineClip* clip : clips) {
            std::size_t lane = first;
            const auto isFree = [&](const Lane& candidate) {
                if (candidate.clips.empty())
                    return true;
                const TimelineClip& last = *candidate.clips.back();
                const auto overlap = overlaps.find(last.id);
                return clip->start >= last.end() - (overlap == overlaps.end() ? 0 : overlap->second);
            };
            while (lane < lanes.size() && !isFree(lanes[lane]))
                ++lane;
            if (lane == lanes.size())
                lanes.push_back({{}, {}});
            lanes[lane].clips.push_back(clip);
        }
    }
    return lanes;
}

void drawClip(Line& line, const TimelineClip& clip, const Scale& scale, const Style& style,
              std::vector<bool>& taken) {
    const Signs& signs = signsOf(style);
    const std::size_t columns = taken.size();
    std::size_t begin = std::min(scale.columnOf(static_cast<double>(clip.start)), columns - 1);
    const std::size_t end = std::clamp(scale.columnOf(static_cast<double>(clip.end())), begin + 1, columns);
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

/// Where transitions are shown, by the clip before each: at the start of the clip behind it.
std::unordered_map<unsigned long long, long long> transitionMarks(const Timeline& timeline) {
    std::unordered_map<unsigned long long, const TimelineClip*> clips;
    for (const TimelineClip& clip : timeline.clips)
        clips.emplace(clip.id, &clip);
    std::unordered_map<unsigned long long, long long> marks;
    for (const Reader::TimelineTransition& transition : timeline.transitions) {
        const auto from = clips.find(transition.from);
        const auto to = clips.find(transition.to);
        if (from != clips.end())
            marks.emplace(transition.from, to == clips.end() ? from->second->end() : to->second->start);
    }
    return marks;
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
    const Scale scale(timeline, columns);
    const std::unordered_map<unsigned long long, long long> marks = transitionMarks(timeline);
    std::string text = ruler(scale, style, columns);
    const std::vector<Lane> lanes = lanesOf(timeline);
    for (std::size_t number = 0; number < std::min(lanes.size(), mostLanes); ++number) {
        Line line(columns);
        std::vector<bool> taken(columns);
        for (const TimelineClip* clip : lanes[number].clips)
            drawClip(line, *clip, scale, style, taken);
        for (const TimelineClip* clip : lanes[number].clips) {
            const auto mark = marks.find(clip->id);
            if (mark != marks.end())
                line.put(std::min(scale.columnOf(static_cast<double>(mark->second)), columns - 1),
                         signsOf(style).transition);
        }
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
