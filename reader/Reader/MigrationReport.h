#pragma once

#include "Adaptors/Backend.h"
#include "Reader/Contents.h"

#include <string>
#include <vector>

namespace Reader {

/// A line that an adaptor logged.
struct LogLine {
    std::string step;     ///< class name of the adaptor
    std::string severity; ///< "WARNING" or "ERROR"
    std::string text;
    std::string place; ///< source file and line

    bool isError() const { return severity == "ERROR"; }
};

/// What happened in a migration.
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
    std::size_t clipsAfter = 0;                   ///< of those before, how many the result still reaches
    std::vector<Clip> lostClips;                  ///< the others
    std::vector<unsigned long long> duplicateIds; ///< ids that two objects had; the later ones got new ids
    std::size_t leftOut = 0;                      ///< objects that nothing refers to; known once it is saved

    bool hasErrors() const;
};

} // namespace Reader
