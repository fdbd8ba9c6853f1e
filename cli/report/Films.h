#pragma once

#include "report/Clips.h"

#include <string>
#include <vector>

namespace ReportPage {

/// A timeline in all states of a migration. Its pictures have one scale, so that a time is at the same place in all.
struct Film {
    unsigned long long id;                    ///< in the result
    const Reader::Timeline* before = nullptr; ///< null where the project as it was read has no such timeline
    const Reader::Timeline* after = nullptr;  ///< null where the result has no such timeline
    double first = 0;                         ///< milliseconds
    double last = 1;

    const Reader::Timeline& shown() const { return before ? *before : *after; }
    /// The name of the timeline, not yet escaped for HTML.
    std::string name() const;
};

/// The timelines that are shown, in order; no more than `most`.
std::vector<Film> filmsOf(const Facts& facts, const Clips& clips, std::size_t most);

/// The timeline of that film in a state; null where it has none.
const Reader::Timeline* timelineIn(const State& state, const Film& film, const Clips& clips);

enum class Moment { Before, After };

/// A picture of one side of a film: labels of lanes, and an SVG picture whose places are percentages, so that it has any
/// width. `name` is what it is called for people who don't see it; escaped. Empty where there is no such side.
std::string picture(const Film& film, Moment moment, const Clips& clips, const std::string& name);

/// What the clips of a picture look like, in words and as a sample.
std::string legend();

} // namespace ReportPage
