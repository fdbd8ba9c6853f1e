#pragma once

#include "Output.h"
#include "Reader/AdaptorTable.h"
#include "Reader/Verify.h"
#include "batch/Options.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

/// What the command line says beside the options for every command.
struct Arguments {
    std::string file;
    std::string otherFile; ///< what `diff` compares it with
    std::string clip;      ///< name or id
    std::string output;
    std::string step;
    std::string bundle;
    std::string folder;
    std::string packagesRoot;
    std::string aiModelsRoot;
    std::string downloadableRoot;
    std::string exchangeFormat = "otio"; ///< what `export` writes
    std::optional<int> from;
    std::optional<std::uint64_t> maxMemory; ///< in bytes
    int to = Reader::currentVersion;
    bool force = false;
    bool inPlace = false;
    bool check = false;
    bool list = false;
    bool repair = false;
    bool timeline = false; ///< draw timelines
    bool raw = false;      ///< compare documents as they are
    bool diff = false;     ///< write what changed beside documents
    std::string
        strict; ///< "all" for any loss, anything else that is not empty for those that are not intended
    Reader::Severity failOn = Reader::Severity::Error;
    Batch::Options batch;
    /// Called before anything is written, with the target. Set by a worker of a batch, which chooses names itself and
    /// makes missing folders.
    std::function<void(const QString& target)> beforeWriting = {};
    bool moreFilesFollow = false; ///< whether this process goes on after the command, as a worker does
};

/// What the program does, a function for each command. Each gives the exit code; all but steps() and repairs() throw Reader::Error
/// and Messages::Failure.
namespace Commands {

int migrate(const Arguments& arguments, Output& output);
int steps(const Arguments& arguments, Output& output);
int run(const Arguments& arguments, Output& output);
int info(const Arguments& arguments, Output& output);
int verify(const Arguments& arguments, Output& output);
int trace(const Arguments& arguments, Output& output);
int restore(const Arguments& arguments, Output& output);
int repairs(const Arguments& arguments, Output& output);
int diff(const Arguments& arguments, Output& output);
int explain(const Arguments& arguments, Output& output);
int timeline(const Arguments& arguments, Output& output);
int report(const Arguments& arguments, Output& output);
int exportTimeline(const Arguments& arguments, Output& output);

} // namespace Commands
