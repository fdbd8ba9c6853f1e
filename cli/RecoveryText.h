#pragma once

#include "Recovery/RecoveryReport.h"
#include "Terminal.h"

#include <string>

/// What the program says of a damaged file that was recovered.

namespace Texts {

/// What is damaged, what was recovered, and what is lost: a line for each, two spaces further right than the line before
/// it, for the summary. Names of clips are fit for a terminal.
std::string recovery(const Reader::RecoveryReport& report, const Terminal::Colours& colours);

/// The same in a part of a sentence: "the file is damaged: 58 clips are recoverable, 2 are lost".
std::string recoveryInShort(const Reader::RecoveryReport& report);

} // namespace Texts
