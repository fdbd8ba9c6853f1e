#include "Stored/V21/Internal/PointReferences.h"

#include <algorithm>
#include <limits>
#include <string_view>

namespace Stored::V21::Internal {
namespace {

// The value of a point may name others, so the text could double with each point.
constexpr qint64 maxGrowth = 4;
constexpr qint64 maxGrowthOfSmallText = qint64(1024) * 1024;
// The bytes that are searched plus the letters of ids that are compared. A letter counts several times,
// because comparing takes longer than searching.
constexpr qint64 maxWork = qint64(1) << 31;
constexpr qint64 workOfLetter = 8;

constexpr int none = std::numeric_limits<int>::max();

constexpr std::string_view endings[] = {".posX", ".posY"};
constexpr std::string_view commonEnding = ".pos";
constexpr int axes = 2;

/// The number of a coordinate. They are replaced in this order: X of the first point, its Y, X of the second
/// ...
int coordinateOf(int point, int axis) {
    return point * axes + axis;
}

std::string_view view(const QByteArray& text) {
    return {text.constData(), static_cast<std::size_t>(text.size())};
}

bool holdsEnding(std::string_view text) {
    return std::any_of(std::begin(endings), std::end(endings),
                       [&](std::string_view ending) { return text.find(ending) != text.npos; });
}

/// Whether inserting this value could create an ending of a reference, in the value or together with the text
/// next to it.
bool mayMakeEnding(std::string_view value) {
    if (value.empty() || holdsEnding(value))
        return true;
    for (std::string_view ending : endings) {
        if (ending.substr(1).find(value.front()) != ending.npos)
            return true;
        for (ending.remove_suffix(1); !ending.empty(); ending.remove_suffix(1)) {
            if (value.size() >= ending.size() && value.substr(value.size() - ending.size()) == ending)
                return true;
        }
    }
    return false;
}

/// The ids of all points, as a trie over their letters from last to first.
class Ids {
public:
    explicit Ids(const std::vector<Point>& points) : m_letters(1), m_nextOfSameId(points.size(), none) {
        for (std::size_t point = points.size(); point-- > 0;)
            add(static_cast<int>(point), view(points[point].id));
    }

    struct Found {
        int coordinate = none;
        int start = 0;               ///< position of the id
        bool isPartOfLonger = false; ///< the whole text from `from` to `end` is the end of a longer id
    };

    /// The first coordinate, from `next` on, whose id is in the text directly before `end`. `next` must not
    /// decrease from call to call.
    Found findBefore(std::string_view text, int from, int end, int axis, int next) {
        Found found;
        int letter = 0;
        for (int place = end; letter != none; --place) {
            const int coordinate = firstOf(letter, axis, next);
            if (coordinate < found.coordinate) {
                found.coordinate = coordinate;
                found.start = place;
            }
            if (place == from)
                found.isPartOfLonger = at(letter).child != none;
            if (place == 0)
                break;
            letter = child(letter, text[static_cast<std::size_t>(place) - 1]);
        }
        return found;
    }

    qint64 compared() const { return m_compared; }

private:
    struct Letter {
        char letter = 0;
        int sibling = none;
        int child = none; ///< the first of the letters that come before this one
        int point = none; ///< the first point whose id begins here
    };

    Letter& at(int letter) { return m_letters[static_cast<std::size_t>(letter)]; }

    void add(int point, std::string_view id) {
        int letter = 0;
        for (auto read = id.rbegin(); read != id.rend(); ++read) {
            int next = child(letter, *read);
            if (next == none) {
                next = static_cast<int>(m_letters.size());
                m_letters.push_back({*read, at(letter).child, none, none});
                at(letter).child = next;
            }
            letter = next;
        }
        m_nextOfSameId[static_cast<std::size_t>(point)] = at(letter).point;
        at(letter).point = point;
    }

    int child(int letter, char wanted) {
        int child = at(letter).child;
        for (++m_compared; child != none && at(child).letter != wanted; ++m_compared)
            child = at(child).sibling;
        return child;
    }

    int firstOf(int letter, int axis, int next) {
        int& point = at(letter).point;
        while (point != none && coordinateOf(point, axes - 1) < next)
            point = m_nextOfSameId[static_cast<std::size_t>(point)];
        int found = point;
        if (found != none && coordinateOf(found, axis) < next)
            found = m_nextOfSameId[static_cast<std::size_t>(found)];
        return found == none ? none : coordinateOf(found, axis);
    }

    std::vector<Letter> m_letters; ///< the one at 0 is the root
    std::vector<int> m_nextOfSameId;
    qint64 m_compared = 0;
};

/// Replaces many coordinates in one pass: all up to the first one whose replacement could change where later
/// ones occur. Then it searches again from there.
class Filling {
public:
    Filling(const QByteArray& text, const std::vector<Point>& points)
        : m_text(text), m_points(points), m_ids(points),
          m_maxSize(maxGrowthOfSmallText + maxGrowth * text.size()) {
        const bool idsHoldEndings = std::any_of(
            points.begin(), points.end(), [](const Point& point) { return holdsEnding(view(point.id)); });
        for (const Point& point : points) {
            for (const QByteArray& value : {point.x, point.y})
                m_mayMeanOthers.push_back(idsHoldEndings || mayMakeEnding(view(value)));
        }
    }

    std::optional<QByteArray> run() {
        for (int next = 0;;) {
            const int last = findReferences(next);
            if (isTooMuch())
                return std::nullopt;
            if (m_references.empty())
                return m_text;
            if (!replaceUpTo(last))
                return std::nullopt;
            if (last == none)
                return m_text;
            next = last + 1;
        }
    }

private:
    struct Reference {
        int coordinate;
        int start;
        int end;
    };

    bool isTooMuch() const { return m_searched + workOfLetter * m_ids.compared() > maxWork; }

    const QByteArray& valueOf(int coordinate) const {
        const Point& point = m_points[static_cast<std::size_t>(coordinate / axes)];
        return coordinate % axes == 0 ? point.x : point.y;
    }

    /// Finds for each ending the first coordinate, from `next` on, that it refers to. Gives the last
    /// coordinate that can be replaced in this pass.
    int findReferences(int next) {
        m_references.clear();
        m_searched += m_text.size();
        const std::string_view text = view(m_text);
        int last = none;
        int behind = 0;        // end of the previous ending
        int referenced = none; // the coordinate of the previous ending
        for (std::size_t at = text.find(commonEnding); at != text.npos && !isTooMuch();
             at = text.find(commonEnding, at + 1)) {
            const auto* ending =
                std::find(std::begin(endings), std::end(endings), text.substr(at, endings[0].size()));
            if (ending == std::end(endings))
                continue;
            const auto axis = static_cast<int>(ending - std::begin(endings));
            const Ids::Found found = m_ids.findBefore(text, behind, static_cast<int>(at), axis, next);
            // The value that replaces the previous reference may become a part of an id, or its text may have
            // been one.
            if (found.isPartOfLonger)
                last = std::min(last, referenced);
            if (found.coordinate != none) {
                m_references.push_back(
                    {found.coordinate, found.start, static_cast<int>(at + ending->size())});
                if (found.start < behind || m_mayMeanOthers[static_cast<std::size_t>(found.coordinate)])
                    last = std::min(last, found.coordinate);
            }
            behind = static_cast<int>(at + ending->size());
            referenced = found.coordinate;
        }
        return last;
    }

    bool replaceUpTo(int last) {
        qint64 size = m_text.size();
        int behind = 0;
        std::vector<Reference> replaced;
        for (const Reference& reference : m_references) {
            if (reference.coordinate > last || reference.start < behind) // begins inside the previous one
                continue;
            behind = reference.end;
            replaced.push_back(reference);
            size += valueOf(reference.coordinate).size() - (reference.end - reference.start);
        }
        if (size > m_maxSize)
            return false;
        QByteArray text;
        text.reserve(static_cast<int>(size));
        int copied = 0;
        for (const Reference& reference : replaced) {
            text.append(m_text.constData() + copied, reference.start - copied);
            text += valueOf(reference.coordinate);
            copied = reference.end;
        }
        text.append(m_text.constData() + copied, m_text.size() - copied);
        m_text = text;
        return true;
    }

    QByteArray m_text;
    const std::vector<Point>& m_points;
    Ids m_ids;
    qint64 m_maxSize;
    std::vector<bool> m_mayMeanOthers; ///< by coordinate: its value may create or change other references
    std::vector<Reference> m_references;
    qint64 m_searched = 0;
};

} // namespace

std::optional<QByteArray> withPointsFilledIn(const QByteArray& text, const std::vector<Point>& points) {
    return Filling(text, points).run();
}

} // namespace Stored::V21::Internal
