#pragma once

#include "report/Films.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <vector>

namespace ReportPage {

/// What the script of a page needs to draw each film behind each step. Every state holds only what is different from the
/// one before. None where a page would get too large.
///
///   names   texts that the numbers below refer to
///   kinds   words for kinds of clips
///   lanes   labels of lanes
///   films   {name, first, last}, times in milliseconds
///   rows    for each film the place of each of its clips in the list of all clips, -1 for none
///   states  {name, films}, where `films` holds by the film's number
///             lanes        numbers of lanes, the uppermost first; missing where they are the same
///             put          [clip, name, kind, lane, start, duration, number of effects, flags]; flags are 1 off, 2 reversed
///             del          clips that are gone
///             transitions  [lane, name, time, duration]; missing where they are the same
std::optional<nlohmann::ordered_json> stepData(const Facts& facts, const std::vector<Film>& films,
                                               const Clips& clips);

} // namespace ReportPage
