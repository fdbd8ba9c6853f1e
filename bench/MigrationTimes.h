#pragma once

#include "bench/Generator.h"

#include <QByteArray>

#include <cstddef>
#include <string>
#include <vector>

namespace Bench {

/// The schema version from which migrations are measured: with it, all steps run.
inline constexpr int oldestVersion = 3;

struct Part {
    std::string name;
    double milliseconds = 0;
};

/// The costs of migrating a project from the oldest version. Times are milliseconds of processor time, memory
/// is in bytes.
struct MigrationTimes {
    std::size_t elements = 0; ///< elements in the archive
    std::size_t bytesRead = 0;
    std::size_t bytesWritten = 0;
    std::size_t logLines = 0;
    double load = 0;            ///< text into the DOM
    double write = 0;           ///< the result as JSON text
    double create = 0;          ///< as many elements and attributes as the archive has more after all steps
    double convert = 0;         ///< the conversion to JSON, as in the migration
    double migration = 0;       ///< parse, migrate and save, as in the program
    double freeLoaded = 0;      ///< freeing the loaded archive; not part of `load`
    double freeMigrated = 0;    ///< freeing what is left of a migration; not part of `migration`
    std::vector<Part> steps;    ///< each measured in the migration itself
    std::vector<Part> others;   ///< all other parts of the migration
    std::size_t loadMemory = 0; ///< peak of loading alone
    std::size_t migrationMemory = 0; ///< peak of the whole migration

    /// The minimum for any program: loading the archive plus writing the result.
    double floor() const { return load + write; }
    /// The minimum for steps that change a DOM: what they add is created, and the archive is converted.
    double bound() const { return load + create + convert + write; }
};

/// Measures `runs` times. Gives the times of the run whose migration costs the median of what its floor costs: both were
/// measured in the same seconds, in which other programs disturb both. Of each part it gives the median of all runs.
MigrationTimes measureMigration(const Size& size, int runs);

/// Milliseconds of one call, for a process that does nothing else.
double timeOfLoading(const QByteArray& text);
double timeOfMigration(const QByteArray& text);

} // namespace Bench
