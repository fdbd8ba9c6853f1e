#include "Reader/LineDiff.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Reader {
namespace {

using Lines = std::vector<std::string_view>;

Lines linesOf(const QByteArray& text) {
    Lines lines;
    const std::string_view all(text.constData(), static_cast<std::size_t>(text.size()));
    for (std::size_t at = 0; at < all.size();) {
        const std::size_t end = std::min(all.find('\n', at), all.size());
        lines.push_back(all.substr(at, end - at));
        at = end + 1;
    }
    return lines;
}

/// A part of both texts.
struct Range {
    std::size_t begin, end;           ///< lines of the text before
    std::size_t beginAfter, endAfter; ///< lines of the text after
};

/// Finds lines that stay.
class Matcher {
public:
    Matcher(const Lines& before, const Lines& after) : m_kept(before.size()), m_keptAfter(after.size()) {
        std::unordered_map<std::string_view, int> numbers;
        const auto number = [&](const Lines& lines, std::vector<int>& result) {
            for (const std::string_view line : lines)
                result.push_back(numbers.emplace(line, static_cast<int>(numbers.size())).first->second);
        };
        number(before, m_before);
        number(after, m_after);
        m_open.push_back({0, before.size(), 0, after.size()});
        while (!m_open.empty()) {
            const Range range = m_open.back();
            m_open.pop_back();
            match(range);
        }
    }

    bool isKept(std::size_t line) const { return m_kept[line]; }
    bool isKeptAfter(std::size_t line) const { return m_keptAfter[line]; }

private:
    void keep(std::size_t line, std::size_t lineAfter) {
        m_kept[line] = true;
        m_keptAfter[lineAfter] = true;
    }

    void match(Range range) {
        while (range.begin < range.end && range.beginAfter < range.endAfter &&
               m_before[range.begin] == m_after[range.beginAfter])
            keep(range.begin++, range.beginAfter++);
        while (range.begin < range.end && range.beginAfter < range.endAfter &&
               m_before[range.end - 1] == m_after[range.endAfter - 1])
            keep(--range.end, --range.endAfter);
        if (range.begin == range.end || range.beginAfter == range.endAfter)
            return;
        const auto anchors = anchorsIn(range);
        if (anchors.empty()) {
            matchShortest(range);
            return;
        }
        Range between{range.begin, 0, range.beginAfter, 0};
        for (const auto& [line, lineAfter] : anchors) {
            keep(line, lineAfter);
            between.end = line;
            between.endAfter = lineAfter;
            m_open.push_back(between);
            between.begin = line + 1;
            between.beginAfter = lineAfter + 1;
        }
        between.end = range.end;
        between.endAfter = range.endAfter;
        m_open.push_back(between);
    }

    using Anchors = std::vector<std::pair<std::size_t, std::size_t>>;

    /// Lines that both parts have exactly once: the longest series that is in order.
    Anchors anchorsIn(const Range& range) const {
        struct Uses {
            std::size_t count = 0, countAfter = 0, lineAfter = 0;
        };
        std::unordered_map<int, Uses> uses;
        for (std::size_t line = range.begin; line < range.end; ++line)
            ++uses[m_before[line]].count;
        for (std::size_t line = range.beginAfter; line < range.endAfter; ++line) {
            Uses& use = uses[m_after[line]];
            ++use.countAfter;
            use.lineAfter = line;
        }
        Anchors unique;
        for (std::size_t line = range.begin; line < range.end; ++line) {
            const Uses& use = uses[m_before[line]];
            if (use.count == 1 && use.countAfter == 1)
                unique.emplace_back(line, use.lineAfter);
        }
        return longestSeries(unique);
    }

    /// The longest part in which the second numbers ascend, too.
    static Anchors longestSeries(const Anchors& pairs) {
        constexpr std::size_t none = static_cast<std::size_t>(-1);
        std::vector<std::size_t> tails; // the last pair of the best series of each length
        std::vector<std::size_t> previous(pairs.size(), none);
        for (std::size_t place = 0; place < pairs.size(); ++place) {
            const auto tail = std::lower_bound(
                tails.begin(), tails.end(), pairs[place].second,
                [&](std::size_t other, std::size_t line) { return pairs[other].second < line; });
            previous[place] = tail == tails.begin() ? none : *(tail - 1);
            if (tail == tails.end())
                tails.push_back(place);
            else
                *tail = place;
        }
        Anchors series;
        for (std::size_t place = tails.empty() ? none : tails.back(); place != none; place = previous[place])
            series.push_back(pairs[place]);
        std::reverse(series.begin(), series.end());
        return series;
    }

    /// The greatest number of lines that stay, for short parts; no line of a long one.
    void matchShortest(const Range& range) {
        const std::size_t rows = range.end - range.begin;
        const std::size_t columns = range.endAfter - range.beginAfter;
        constexpr std::size_t mostCells = 250'000;
        if (columns > mostCells / rows)
            return;
        // common[i][j]: the lines that stay of those from i and j on
        std::vector<unsigned> common((rows + 1) * (columns + 1));
        const auto at = [&](std::size_t i, std::size_t j) -> unsigned& {
            return common[i * (columns + 1) + j];
        };
        const auto areEqual = [&](std::size_t i, std::size_t j) {
            return m_before[range.begin + i] == m_after[range.beginAfter + j];
        };
        for (std::size_t i = rows; i-- > 0;) {
            for (std::size_t j = columns; j-- > 0;)
                at(i, j) = areEqual(i, j) ? at(i + 1, j + 1) + 1 : std::max(at(i + 1, j), at(i, j + 1));
        }
        for (std::size_t i = 0, j = 0; i < rows && j < columns;) {
            if (areEqual(i, j))
                keep(range.begin + i++, range.beginAfter + j++);
            else if (at(i + 1, j) >= at(i, j + 1))
                ++i;
            else
                ++j;
        }
    }

    std::vector<int> m_before; ///< a number for each line; equal lines have equal numbers
    std::vector<int> m_after;
    std::vector<bool> m_kept;
    std::vector<bool> m_keptAfter;
    std::vector<Range> m_open;
};

/// Writes the lines that do not stay, with some around.
class Writer {
public:
    Writer(const Lines& before, const Lines& after)
        : m_before(before), m_after(after), m_matcher(before, after) {}

    QByteArray write(const std::string& nameBefore, const std::string& nameAfter) {
        QByteArray text;
        Range place{0, 0, 0, 0}; // `end` is not used
        while (skipKept(place)) {
            if (text.isEmpty())
                text.append("--- ")
                    .append(nameBefore.c_str())
                    .append("\n+++ ")
                    .append(nameAfter.c_str())
                    .append('\n');
            text += hunkAt(place);
        }
        return text;
    }

private:
    static constexpr std::size_t around = 3;

    bool isKept(const Range& place) const {
        return place.begin < m_before.size() && m_matcher.isKept(place.begin) &&
               place.beginAfter < m_after.size() && m_matcher.isKeptAfter(place.beginAfter);
    }
    /// Goes to the next line that does not stay; false at the end.
    bool skipKept(Range& place) const {
        while (isKept(place)) {
            ++place.begin;
            ++place.beginAfter;
        }
        return place.begin < m_before.size() || place.beginAfter < m_after.size();
    }

    QByteArray hunkAt(Range& place) const {
        const std::size_t context = std::min({around, place.begin, place.beginAfter});
        const Range start{place.begin - context, 0, place.beginAfter - context, 0};
        QByteArray lines;
        for (std::size_t line = start.begin; line < place.begin; ++line)
            add(lines, ' ', m_before[line]);
        for (;;) {
            for (; place.begin < m_before.size() && !m_matcher.isKept(place.begin); ++place.begin)
                add(lines, '-', m_before[place.begin]);
            for (; place.beginAfter < m_after.size() && !m_matcher.isKeptAfter(place.beginAfter);
                 ++place.beginAfter)
                add(lines, '+', m_after[place.beginAfter]);
            Range next = place;
            const bool hasMore = skipKept(next);
            const bool joinsNext = hasMore && next.begin - place.begin <= 2 * around;
            const std::size_t end = joinsNext ? next.begin : std::min(next.begin, place.begin + around);
            for (; place.begin < end; ++place.begin, ++place.beginAfter)
                add(lines, ' ', m_before[place.begin]);
            if (!joinsNext)
                break;
        }
        return "@@ -" + rangeText(start.begin, place.begin) + " +" +
               rangeText(start.beginAfter, place.beginAfter) + " @@\n" + lines;
    }

    static void add(QByteArray& lines, char sign, std::string_view line) {
        lines += sign;
        lines.append(line.data(), static_cast<int>(line.size()));
        lines += '\n';
    }

    /// "5,3": the first line, from 1, and their number. An empty range has the line before it.
    static QByteArray rangeText(std::size_t begin, std::size_t end) {
        return QByteArray::number(static_cast<qulonglong>(begin == end ? begin : begin + 1)) + ',' +
               QByteArray::number(static_cast<qulonglong>(end - begin));
    }

    const Lines& m_before;
    const Lines& m_after;
    Matcher m_matcher;
};

} // namespace

QByteArray unifiedDiff(const QByteArray& before, const QByteArray& after, const std::string& nameBefore,
                       const std::string& nameAfter) {
    const Lines linesBefore = linesOf(before);
    const Lines linesAfter = linesOf(after);
    return Writer(linesBefore, linesAfter).write(nameBefore, nameAfter);
}

QByteArray indented(const QByteArray& json) {
    constexpr int deepest = 64; // deeper lines start where these do
    QByteArray text;
    text.reserve(json.size() * 2);
    int depth = 0;
    bool isInText = false;
    const auto newLine = [&] { text.append('\n').append(QByteArray(std::min(depth, deepest), ' ')); };
    for (int at = 0; at < json.size(); ++at) {
        const char c = json[at];
        const char next = at + 1 < json.size() ? json[at + 1] : '\0';
        text += c;
        if (isInText) {
            if (c == '\\')
                text += json[++at];
            isInText = c != '"';
        } else if (c == '"') {
            isInText = true;
        } else if (c == ':') {
            text += ' ';
        } else if ((c == '{' && next != '}') || (c == '[' && next != ']')) {
            ++depth;
            newLine();
        } else if (c == ',') {
            newLine();
        }
        const bool isEmpty = c == '{' || c == '[';
        if (!isInText && !isEmpty && (next == '}' || next == ']')) {
            --depth;
            newLine();
        }
    }
    return text;
}

} // namespace Reader
