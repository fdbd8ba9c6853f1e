#pragma once

#include "Exchange/OpenTimeline.h"
#include "Reader/Comparison.h"
#include "Reader/Document.h"
#include "Reader/Explanation.h"
#include "Reader/MigrationReport.h"
#include "Reader/Timeline.h"
#include "Reader/Trace.h"
#include "Reader/Verify.h"

#include <QString>

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <vector>

/// What is known of documents and migrations as JSON, for other programs. docs/schema/ describes the keys; a change of a
/// key is a change there.
///
/// Threads: each function reads only its arguments; see Document.
namespace Reader::Report {

using Json = nlohmann::ordered_json;

/// The number that goes up where a key changes its meaning or leaves.
inline constexpr int format = 1;

/// What every report says of itself.
struct Envelope {
    std::string command;              ///< empty where none was recognised
    std::optional<std::string> input; ///< name of the document; none where none was named
    std::string sha256; ///< of the document's bytes, in hexadecimal digits; empty where it was not read
    std::optional<double> seconds; ///< since the work began; none where they can't be known
};

/// A whole report. `result` holds the keys of its kind, which the functions below give; null for none.
Json object(const Envelope& envelope, const Json& result);

// The keys of each kind of report.

/// A migration, and what was done with its result.
struct MigrationFacts {
    const MigrationReport& report;
    std::string output = {};             ///< name of the file that was written; empty for none
    std::string backup = {};             ///< empty for none
    std::vector<std::string> notes = {}; ///< on the file that was replaced, a sentence each
    std::vector<RepairMade> advice = {}; ///< what repairs would have done, where that helps
    bool hasVersion = true;              ///< whether the document names a schema version
    bool hasClips = true;                ///< whether the clips before and after were compared
};

Json migration(const MigrationFacts& facts);
/// A migration whose result was exported.
Json exported(const MigrationFacts& facts, const TimelineExport& result);
/// `repairs` are those that a migration needs; null where that is not known.
Json info(const Document& document, const std::vector<RepairMade>* repairs);
/// A part of it. `folder` is that of the project's file; empty for none.
Json timelines(const std::vector<Timeline>& timelines, const QString& folder);
Json findings(const std::vector<Finding>& findings);
Json trace(const Trace& trace, const MigrationReport& report);
Json stepList(int from, int to);
Json repairList();

/// A document that is compared with another one.
struct ComparedInput {
    QString name;
    Bundle::Backend form;
    std::optional<int> version;
};

/// What is different between two documents.
struct ComparisonFacts {
    ComparedInput before;
    ComparedInput after;
    std::optional<int>
        comparedAs; ///< the version that both were brought to; none where they are as they were
    std::vector<Difference> differences;
};

Json comparison(const ComparisonFacts& facts);

/// What steps did to a project. With `isOneStep` a step is described also where it changed nothing.
Json explanation(const std::vector<StepEffect>& steps, const MigrationReport& report, bool isOneStep);

// Parts of several of these.

Json repairsAsJson(const std::vector<RepairMade>& repairs);
Json recovery(const RecoveryReport& report);
/// null where nothing was recovered.
Json recoveryAsJson(const std::optional<RecoveryReport>& report);

// What these and texts for people have in common.

/// The adaptors that are no steps, by name.
std::vector<const AdaptorRow*> unnumberedAdaptors();
/// The steps to the newest version; none where the document has no version.
std::vector<std::string> namesOfStepsToRun(const Document& document);
std::vector<Finding> ofKind(Fault fault, std::vector<Finding> findings);

/// The version that two documents are compared at: the newer one; where only one is an archive of it, the first one that
/// both can have as JSON. Throws Error where one has no version.
int versionToCompare(const ComparedInput& before, const ComparedInput& after);

} // namespace Reader::Report
