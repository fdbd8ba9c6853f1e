#pragma once

#include "Adaptors/Backend.h"
#include "Reader/Contents.h"
#include "Recovery/RecoveryReport.h"

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

/// A character or a number in a document's text that was repaired.
struct TextPlace {
    long long line = 0;   ///< from 1
    long long column = 0; ///< from 1, in bytes
    std::string what;     ///< what is there, such as "U+0001"
};

/// A repair that was made on a document.
struct RepairMade {
    std::string name;   ///< as in the table of repairs, such as "second-timelines"
    std::string before; ///< class name of the adaptor before which it was made, or another place of the table
    std::vector<LoggedObject>
        objects;                   ///< what it changed, each object once, with the clip that it belongs to
    std::vector<TextPlace> places; ///< the first places, of a repair on the text
    std::size_t count = 0;         ///< how many places were repaired
    std::string text;              ///< what was done, a sentence without a full stop

    /// The clips among the objects and those that the objects belong to, each once.
    std::vector<Part> clips() const;
};

/// What was done to open a file, where it was opened with repairs.
struct OpeningReport {
    std::vector<RepairMade> repairs; ///< on the text, before it was parsed
    std::optional<RecoveryReport>
        recovery; ///< where the file is damaged, or has no schema version of its own
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
    std::vector<RepairMade> repairs;        ///< in the order in which they were made
    std::optional<RecoveryReport> recovery; ///< as in OpeningReport
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
    /// Whether the file was damaged, and something of it could not be recovered.
    bool isFromIncompleteFile() const { return recovery && !recovery->isComplete(); }
};

} // namespace Reader
