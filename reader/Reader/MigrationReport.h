#pragma once

#include "Adaptors/Backend.h"
#include "Reader/Contents.h"

#include <string>
#include <vector>

namespace Reader {

/// A warning or an error that an adaptor logged.
struct LogLine {
    std::string step;     ///< class name of the adaptor
    std::string severity; ///< "WARNING" or "ERROR"
    std::string text;
    std::string place; ///< source file and line

    bool isError() const { return severity == "ERROR"; }
};

/// The results of a migration.
///
/// Threads: a plain value.
struct MigrationReport {
    Bundle::Backend formBefore = Bundle::Backend::Xml;
    Bundle::Backend formAfter = Bundle::Backend::Xml;
    int from = 0;
    int to = 0;
    std::vector<std::string> steps; ///< class names of the steps that ran, in order
    std::vector<std::string>
        skipped; ///< steps that exist for archives only and were left out of a JSON document
    std::vector<LogLine> log;
    ObjectCounts objectsBefore;
    ObjectCounts objectsAfter;
    std::size_t clipsBefore = 0;
    std::size_t clipsAfter = 0;                   ///< how many of `clipsBefore` can be reached in the result
    std::vector<Clip> lostClips;                  ///< the clips that can't be reached in the result
    std::vector<unsigned long long> duplicateIds; ///< ids that two objects had; the later object got a new id
    std::size_t leftOut = 0; ///< unreachable objects, which are not saved; set by save() and write()

    bool hasErrors() const;
};

} // namespace Reader
