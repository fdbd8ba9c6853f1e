#pragma once

#include "Reader/Error.h"
#include "Reader/MigrationOptions.h"
#include "Report/ReportJson.h"
#include "Report/Verdict.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>
#include <string>

/// What the functions of the Python module do, without Python: called while other threads run Python code.
///
/// Threads: each call has documents of its own.
namespace Work {

using Reader::Report::Json;

/// A project to read.
struct Source {
    QString location;                  ///< path of the file that it is, or that it came from; empty for none
    std::optional<QByteArray> content; ///< read from the file where there is none
};

/// Arguments that several functions have.
struct Options {
    int to = Reader::currentVersion;
    std::optional<int> from = {};
    bool repair = false;
    Bundle::PortableFolders folders = {};
    /// Called now and then. May throw, which ends the work.
    std::function<void()> pause = {};
};

/// An error with what repairs would do, where they were not asked for and help.
struct Failure {
    Reader::Error error;
    std::optional<Reader::MigrationReport> advice;
};

/// A migration whose result was refused as too strict. `report` is that of the migration.
struct Refusal {
    Json report;
};

struct Migrated {
    QByteArray data; ///< the document as it is saved
    Json report;
    bool isWhole;
};

/// Migrates a project as for a file that will be saved at `target`; empty for the place of the source. Throws
/// Reader::Error, Failure and Refusal, as the other functions may.
Migrated migrate(const Source& source, const Options& options, Reader::Report::Strictness strictness,
                 const QString& target);

/// The timeline of a project as OpenTimelineIO.
Migrated exportOtio(const Source& source, const Options& options, Reader::Report::Strictness strictness,
                    const QString& target);

Json info(const Source& source, const Options& options);
Json verify(const Source& source, const Options& options);
/// With `asTheyAre` the documents are compared without a migration. Throws std::invalid_argument where that can't be.
Json diff(const Source& before, const Source& after, const Options& options, bool asTheyAre);
/// `step` is the class name of the one step to explain, `clip` the name or id of the clip; empty for all. Throws
/// std::invalid_argument where the project has none.
Json explain(const Source& source, const Options& options, const std::string& step, const std::string& clip);
Json steps(int from, int to);

/// Writes a result. `input` is the file whose permissions a new one gets; empty for none. Throws Reader::Error.
void write(const QString& path, const QByteArray& bytes, bool replace, const QString& input);

/// The facts of an error: kind, text, and what is known of the place.
Json factsOf(const Reader::Error& error, const std::optional<Reader::MigrationReport>& advice = {});

} // namespace Work
