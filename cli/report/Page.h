#pragma once

#include "report/Facts.h"

#include <string>

/// The page of a migration: HTML that needs no other file, no network and no scripts. With scripts it can be searched
/// and zoomed, and shows the timelines behind each step.
namespace ReportPage {

std::string page(const Facts& facts);

} // namespace ReportPage
