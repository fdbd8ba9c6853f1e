#pragma once

#include "Reader/MigrationReport.h"

#include <nlohmann/json.hpp>

#include <string>

/// What the program says of clips, effects and titles that a result does not reach.
namespace Losses {

/// "18 clips: 14 kept, 4 removed (quizzes, V69); 2 added: 16"
std::string clipsAsText(const Reader::MigrationReport& report);

/// A line for each loss that no schema version meant, and one for all others of a kind and a step.
std::string lossesAsText(const Reader::MigrationReport& report);

nlohmann::ordered_json clipsAsJson(const Reader::MigrationReport& report);
nlohmann::ordered_json lossesAsJson(const Reader::MigrationReport& report);

} // namespace Losses
