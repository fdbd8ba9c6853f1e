#pragma once

#include "Reader/Document.h"
#include "Reader/MigrationReport.h"

#include <string>

/// What a report of a migration means for the user.
///
/// Threads: each function reads only its arguments.
namespace Reader::Report {

/// What a line that a step logged means for the user, a sentence without a full stop; empty for nothing more than the
/// line itself says.
std::string meaningOf(const LogLine& line);

/// Whether the result is whole all the same: nothing that the input held is missing or changed because of that error.
bool isHarmless(const LogLine& line);

/// Whether something is lost that no schema version meant to remove, by a step or in a damaged file, or a step reported
/// an error.
bool wouldLose(const MigrationReport& report);

/// Which results are refused.
enum class Strictness {
    None,
    Unintended, ///< those with an error, and those that lose what no schema version meant to remove
    All,        ///< these, and those that lose anything
};

bool isRefused(Strictness strictness, const MigrationReport& report);

/// Whether all that the input held is in the result, except what schema versions removed on purpose.
bool isWhole(const MigrationReport& report);

/// Whether the document has that version already, in the form that documents of that version have.
bool isUpToDate(const Document& document, int to);

} // namespace Reader::Report
