#pragma once

#include "Reader/Timeline.h"
#include "TimelineDrawing.h"

#include <optional>
#include <string>
#include <vector>

/// What `adaptors info` says of a project's timelines and media.
namespace TimelineReport {

struct Project {
    std::vector<Reader::Timeline> timelines;
    QString folder; ///< that of the project's file; empty for none
};

/// For people: length, picture, tracks and media. With a style the timelines are drawn as well.
std::string text(const Project& project, const std::optional<TimelineDrawing::Style>& drawing);

} // namespace TimelineReport
