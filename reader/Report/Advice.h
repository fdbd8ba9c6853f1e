#pragma once

#include "Reader/Error.h"
#include "Reader/Migration.h"
#include "Reader/MigrationOptions.h"
#include "Reader/MigrationReport.h"

#include <QByteArray>

#include <optional>
#include <string>
#include <vector>

/// Whether repairs would help where a migration without them failed or lost something. A second migration finds out.
///
/// Threads: as Reader::Migration.
namespace Reader::Report {

/// The document that was worked on.
struct Subject {
    const QByteArray& bytes;
    std::optional<int> from;         ///< as in parse()
    const MigrationOptions& options; ///< for a migration of it
    std::string step = {};           ///< where only that step runs
};

/// The report of a second try with repairs, where it succeeds; none otherwise, and for an error that repairs can't help.
std::optional<MigrationReport> helpfulRepairs(const Error& error, const Subject& subject);

/// The repairs that a second try makes, if its result loses less or has fewer errors than the migration, which has run.
/// What the migration does not need any more is freed before.
std::vector<RepairMade> betterRepairs(Migration& migration, const Subject& subject);

} // namespace Reader::Report
