#pragma once

#include "Reader/Timeline.h"

#include <string>
#include <vector>

/// Timelines as an SVG picture that needs nothing else: no scripts, no fonts, no other files. Light or dark as the
/// reader prefers. All texts of documents are escaped.
namespace TimelineSvg {

struct Options {
    int width = 1200;                 ///< in pixels
    std::string title = {};           ///< of the picture, such as the project's name; empty for none
    bool withUnusedTimelines = false; ///< timelines that nothing shows
};

/// The timelines, one below the other: a ruler with times, lanes with clips coloured by kind, transitions where clips
/// meet, and a mark for effects. Each clip has its name, kind, time and file as its accessible name.
std::string timelineSvg(const std::vector<Reader::Timeline>& timelines, const Options& options);

} // namespace TimelineSvg
