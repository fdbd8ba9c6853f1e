#pragma once

#include <cstddef>

namespace Bench {

/// The costs of migrating a flat JSON document. Times are milliseconds of processor time.
struct FlatTimes {
    int version = 0;
    std::size_t bytesRead = 0;
    std::size_t bytesWritten = 0;
    double parse = 0;     ///< the text by nlohmann::json::parse()
    double dump = 0;      ///< the result by nlohmann::json::dump()
    double migration = 0; ///< parse, migrate and save, as in the program

    double floor() const { return parse + dump; }
};

/// Measures a document of that version, 63 or later: a generated archive with so many elements that was migrated to it.
/// Gives one of the `runs`, as measureMigration() does.
FlatTimes measureFlat(int version, std::size_t elements, int runs);

} // namespace Bench
