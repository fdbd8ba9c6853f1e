#pragma once

#include "JsonReport.h"
#include "Recovery/RecoveryReport.h"
#include "Terminal.h"

#include <string>

/// What the program says of a damaged file that was recovered.

namespace Texts {

/// What is damaged, what was recovered, and what is lost: a line for each, two spaces further right than the line before
/// it, for the summary. Names of clips are fit for a terminal.
std::string recovery(const Reader::RecoveryReport& report, const Terminal::Colours& colours);

} // namespace Texts

namespace JsonReport {

Json recovery(const Reader::RecoveryReport& report);

} // namespace JsonReport

/// The exit code of a command that recovered a file and did the rest of its work: Done only where nothing is missing.
Messages::ExitCode exitCodeAfter(const Reader::RecoveryReport& report);
