#pragma once

#include "Reader/Timeline.h"

#include <string>
#include <vector>

/// Timelines as pictures of characters, ready for a terminal.
namespace TimelineDrawing {

struct Style {
    int width = 80;      ///< characters on a line
    bool isUtf8 = false; ///< otherwise only ASCII characters are used
};

/// The style for a stream: as wide as its terminal, with the characters that the locale can show.
Style styleFor(int descriptor);

/// A ruler with times, and a lane for each level of each track; clips that overlap have lanes of their own. Names
/// stand where there is space.
std::string draw(const Reader::Timeline& timeline, const Style& style);

/// What the signs mean, a line.
std::string legend(const Style& style);

} // namespace TimelineDrawing
