#pragma once

#include "Adaptors/Backend.h"
#include "Reader/Contents.h"

#include <optional>
#include <string>
#include <vector>

namespace Reader {

/// An object of the project that a log line is about.
struct LoggedObject {
    std::string className;
    unsigned long long id = 0;
    std::optional<Part> clip = {}; ///< the clip that it is or belongs to, where that is known
};

/// A warning or an error that an adaptor logged.
struct LogLine {
    std::string step;     ///< class name of the adaptor
    std::string severity; ///< "WARNING" or "ERROR"
    std::string text;
    std::string place;                       ///< source file and line
    std::optional<LoggedObject> object = {}; ///< where the adaptor says what it worked on

    bool isError() const { return severity == "ERROR"; }
};

/// A clip, an effect or a title of the input that the result does not reach.
struct Loss {
    Part part;
    std::string
        step; ///< class name of the adaptor behind which it was no longer reached; empty where the input did
              ///< not reach it either, or where that is not known
    std::string reason;      ///< for people, a part of a sentence
    bool isIntended = false; ///< whether the schema version meant it to go
    bool wasUsed = true;     ///< whether the project reached it before; known where the input was read again
    std::string cause = {};  ///< the reason in a word for counts, such as "quizzes"; may be empty
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
    std::size_t clipsBefore = 0;                  ///< that the input's timelines list
    std::size_t clipsKept = 0;                    ///< of those, how many the result reaches
    std::size_t clipsAdded = 0;                   ///< that the result's timelines list besides
    std::vector<Loss> losses;                     ///< clips, effects and titles, in the input's order
    std::vector<unsigned long long> duplicateIds; ///< ids that two objects had; the later ones got new ids
    std::size_t leftOut = 0;                      ///< objects that nothing refers to; known once it is saved

    std::size_t clipsAfter() const { return clipsKept + clipsAdded; }
    bool hasErrors() const;
    bool hasUnintendedLosses() const;
    /// Whether one of those was used by the project.
    bool hasHarmfulLosses() const;
};

} // namespace Reader
