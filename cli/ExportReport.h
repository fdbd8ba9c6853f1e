#pragma once

#include "Exchange/OpenTimeline.h"

#include <string>

/// What `adaptors export` says of its work.
namespace ExportReport {

/// What could not be said in the format, fit for a terminal; empty where all could.
std::string text(const Reader::TimelineExport& result);

} // namespace ExportReport
