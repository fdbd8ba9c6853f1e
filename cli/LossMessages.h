#pragma once

#include "Reader/MigrationReport.h"
#include "Terminal.h"

#include <string>

/// What the program says to people of clips, effects and titles that a result does not reach. All texts are fit for a
/// terminal.
namespace LossMessages {

/// "18 clips: 14 kept, 4 removed (quizzes, V69); 2 added: 16"
std::string clips(const Reader::MigrationReport& report);

/// A line for one loss: "lost: clip "Beach" (id 7): no reference leads to it any more, V57".
std::string loss(const Reader::Loss& loss, const Terminal::Colours& colours);

/// A line for each loss that no schema version intended, and one for the intended ones that have a kind, a step and a
/// reason in common. Intended losses of clips are left out: clips() has them.
std::string losses(const Reader::MigrationReport& report, const Terminal::Colours& colours);

} // namespace LossMessages
