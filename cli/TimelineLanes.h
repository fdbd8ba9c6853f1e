#pragma once

#include "Reader/Timeline.h"

#include <cstddef>
#include <string>
#include <vector>

/// How the clips of a timeline are laid out in a picture, of characters or another.
namespace TimelineLanes {

/// The clips on a line, by start.
struct Lane {
    std::string label; ///< of the track and the level; empty for a further lane of the same level
    std::vector<const Reader::TimelineClip*> clips;
    std::size_t track = 0; ///< its place in Timeline::tracks
};

/// The lanes of a timeline: one for each level of each track, the uppermost track first. Clips that overlap have lanes
/// of their own, unless a transition joins them; of one level no more than 32.
std::vector<Lane> lanesOf(const Reader::Timeline& timeline);

/// A transition as it is shown.
struct Mark {
    const Reader::TimelineTransition* transition;
    long long time; ///< the start of the clip behind it
};

/// Transitions by the lane of the clip before each; the others are not shown.
std::vector<std::vector<Mark>> marksOf(const Reader::Timeline& timeline, const std::vector<Lane>& lanes);

/// Places of times in a picture of some width.
class Scale {
public:
    Scale(const Reader::Timeline& timeline, double width);
    /// From a time to a later one, in milliseconds.
    Scale(double first, double last, double width);

    /// From 0 to the width.
    double placeOf(long long time) const;
    /// The time between two marks that leaves at least so much space between them, a round number.
    double stepFor(double space) const;
    /// The marks of the ruler, in milliseconds.
    std::vector<double> marks(double step) const;

private:
    double m_width;
    double m_first = 0;
    double m_length = 1;
};

/// "0:30", "1:05:00", or "0:00.50" where marks stand closer than a second
std::string markText(double time, double step);

} // namespace TimelineLanes
