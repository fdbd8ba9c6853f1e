#pragma once

#include "batch/Pages.h"
#include "batch/State.h"

#include <string>

namespace Batch {

/// Whether a table can be written to a file of this name: it ends in .csv, .jsonl or .html. Throws Messages::Failure.
void checkReport(const std::string& file);

/// Writes the rows of a state as a table, in the form that the file's name shows, and for HTML the pages that it links
/// to. Throws Messages::Failure.
void writeReport(State& state, const std::string& file, Pages::Options pages);

} // namespace Batch
