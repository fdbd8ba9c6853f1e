#pragma once

#include "Reader/Migration.h"
#include "Reader/Trace.h"
#include "Reader/Verify.h"
#include "Terminal.h"

#include <QString>

#include <string>
#include <vector>

/// What a migration did.
struct Summary {
    const Reader::MigrationReport& report;
    QString input;
    QString output = {};                         ///< empty where nothing was written
    QString backup = {};                         ///< empty for none
    std::vector<std::string> notes = {};         ///< on the file that was replaced, a sentence each
    std::vector<Reader::RepairMade> advice = {}; ///< what --repair would have done, where that helps
    bool isUpToDate = false; ///< the document had the version asked for, and nothing was done
    bool hasVersion = true;  ///< whether the document names a schema version; `run` needs none
    bool hasClips = true;    ///< whether the clips before and after were compared; `run` does not
};

/// What the program says of its work to people. All texts of documents and all names are fit for a terminal.
namespace Texts {

enum class Detail { Usual, Steps }; ///< with Steps those that ran are listed

/// What `adaptors migrate` says.
std::string summary(const Summary& summary, Detail detail, const Terminal::Colours& colours);

/// Those lines of it that are errors, each with the name of the file: what is said where nothing else is to be.
std::string errors(const Summary& summary, const Terminal::Colours& colours);

/// What `adaptors run` says: what the step reported.
std::string log(const Reader::MigrationReport& report, const Terminal::Colours& colours);

/// The steps that ran, a line for each.
std::string steps(const Reader::MigrationReport& report);

/// What was recovered of a damaged file; empty where it was not damaged.
std::string opening(const Reader::MigrationReport& report, const Terminal::Colours& colours);

/// The repairs that were made, a line for each.
std::string repairs(const std::vector<Reader::RepairMade>& repairs);

/// What `adaptors info` says. `repairs` are those that a migration of the document needs; null where that is not known.
std::string info(const Reader::Document& document, const QString& name,
                 const std::vector<Reader::RepairMade>* repairs);

/// What `adaptors verify` says.
std::string findings(const std::vector<Reader::Finding>& findings, const QString& name,
                     const Terminal::Colours& colours);

/// What `adaptors trace` says.
std::string trace(const Reader::Trace& trace);

/// What `adaptors steps` says.
std::string stepList(int from, int to);

/// What `adaptors repairs` says.
std::string repairList();

/// What is said before a project is read from a terminal.
std::string readingFromTerminal();
/// What restoring a backup did; `kept` is empty where there was no file.
std::string restored(const QString& file, const QString& backup, const QString& kept);

/// How far a migration is, in less than 60 characters: the step that runs now, its place among those to run, and how
/// many there are. Without a step all have run.
std::string progress(const std::string& step, std::size_t place, std::size_t total);

} // namespace Texts
