#pragma once

#include "bench/Generator.h"

#include <QByteArray>

#include <cstddef>
#include <string>
#include <vector>

namespace Bench {

/// The schema version from which migrations are measured: the first that has all steps before it.
inline constexpr int oldestVersion = 3;

struct Part {
    std::string name;
    double milliseconds = 0;
};

/// What the migration of one project of the oldest version costs.
struct MigrationTimes {
    std::size_t elements = 0; ///< of the archive
    std::size_t bytesRead = 0;
    std::size_t bytesWritten = 0;
    std::size_t logLines = 0;
    double load = 0;                 ///< text into the DOM
    double write = 0;                ///< the result as JSON text
    double migration = 0;            ///< parse, migrate and save, as the program does it
    std::vector<Part> steps;         ///< each in the document as it is when the step runs
    std::vector<Part> others;        ///< all other parts of the migration
    std::size_t loadMemory = 0;      ///< peak of loading alone
    std::size_t migrationMemory = 0; ///< peak of the whole migration

    /// What any program needs that reads the one and writes the other.
    double floor() const { return load + write; }
};

/// Measures `runs` times and takes the median of each part.
MigrationTimes measureMigration(const Size& size, int runs);

} // namespace Bench
