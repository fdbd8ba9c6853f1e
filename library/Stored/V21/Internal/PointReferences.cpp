#include "Stored/V21/Internal/PointReferences.h"

#include <algorithm>
#include <limits>
#include <string_view>

namespace Stored::V21::Internal {
namespace {

// One point may bring in the names of others, so that the text could double with each.
constexpr qint64 maxGrowth = 4;
constexpr qint64 maxGrowthOfSmallText = qint64(1024) * 1024;
// Bytes that are searched and letters of ids that are compared, the latter counted manifold for what they take longer.
constexpr qint64 maxWork = qint64(1) << 31;
constexpr qint64 workOfLetter = 8;

constexpr int none = std::numeric_limits<int>::max();

constexpr std::string_view endings[] = {".posX", ".posY"};
constexpr std::string_view commonEnding = ".pos";
constexpr int axes = 2;

/// What is filled in, in this order: the X of the first point, its Y, the X of the second ...
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

/// Whether an ending of a reference could come into being where this value is put into a text, be it in the value or
/// with what stands beside it.
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

/// The ids of all points, as a tree of letters that begins with the last letter of each.
class Ids {
public:
    explicit Ids(const std::vector<Point>& points) : m_letters(1), m_nextOfSameId(points.size(), none) {
        for (std::size_t point = points.size(); point-- > 0;)
            add(static_cast<int>(point), view(points[point].id));
    }

    struct Found {
        int coordinate = none;
        int start = 0;       ///< of the id
        bool goesOn = false; ///< some id is longer than what stands between the two places, and ends in it
    };

    /// Of the coordinates from `next` on, the first one whose id stands right before `end`. From call to call, `next`
    /// must not become less.
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
                found.goesOn = at(letter).child != none;
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
        int child = none; ///< the first of the letters that stand before this one
        int point = none; ///< the first whose id begins here
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

    std::vector<Letter> m_letters; ///< that at 0 stands for none
    std::vector<int> m_nextOfSameId;
    qint64 m_compared = 0;
};

/// Fills in many coordinates at once: all up to the first one after which others could have come to stand at other
/// places, and then on from there.
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

    /// Finds for each ending the first coordinate from `next` on that is meant, and gives the last one up to which
    /// all can be replaced at once.
    int findReferences(int next) {
        m_references.clear();
        m_searched += m_text.size();
        const std::string_view text = view(m_text);
        int last = none;
        int behind = 0;        // the ending before
        int referenced = none; // by the ending before
        for (std::size_t at = text.find(commonEnding); at != text.npos && !isTooMuch();
             at = text.find(commonEnding, at + 1)) {
            const auto* ending =
                std::find(std::begin(endings), std::end(endings), text.substr(at, endings[0].size()));
            if (ending == std::end(endings))
                continue;
            const auto axis = static_cast<int>(ending - std::begin(endings));
            const Ids::Found found = m_ids.findBefore(text, behind, static_cast<int>(at), axis, next);
            // What stands in the place of the reference before may become part of an id, or may have been one.
            if (found.goesOn)
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
            if (reference.coordinate > last || reference.start < behind) // begins in the one before
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
    std::vector<bool>
        m_mayMeanOthers; ///< by coordinate: its value may change what else is a reference to what
    std::vector<Reference> m_references;
    qint64 m_searched = 0;
};

} // namespace

std::optional<QByteArray> withPointsFilledIn(const QByteArray& text, const std::vector<Point>& points) {
    return Filling(text, points).run();
}

} // namespace Stored::V21::Internal
