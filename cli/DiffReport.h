#pragma once

#include "Report/ReportJson.h"

#include <string>

/// What `adaptors diff` says.
namespace DiffReport {

using Input = Reader::Report::ComparedInput;
using Result = Reader::Report::ComparisonFacts;

std::string text(const Result& result);

} // namespace DiffReport
