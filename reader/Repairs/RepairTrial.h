#pragma once

#include "Reader/MigrationOptions.h"
#include "Reader/MigrationReport.h"

#include <QByteArray>

#include <optional>
#include <string>

namespace Repairs {

/// What a migration with repairs does to a document. Nothing is written.
struct Trial {
    Reader::MigrationReport report; ///< with the repairs that were made
    bool succeeds = false;          ///< otherwise the report ends at the step that failed

    bool hasRepairs() const { return !report.repairs.empty() || report.recovery; }
};

/// Migrates a project with repairs, or runs that step only. `version` is as in Reader::parse().
///
/// Threads: as Reader::Migration.
Trial tryRepairs(const QByteArray& bytes, std::optional<int> version, Reader::MigrationOptions options,
                 const std::string& step = {});

/// Whether a migration with repairs gives a better result than one without, whose report that is.
bool isBetter(const Trial& trial, const Reader::MigrationReport& without);

} // namespace Repairs
