#pragma once

#include <string>
#include <vector>

namespace Batch {

/// One of several equal parts of the work.
struct Shard {
    int number = 1; ///< from 1 to `count`
    int count = 1;
};

/// How far the work is, as it is shown.
enum class ProgressForm {
    Auto, ///< a bar on a terminal, else a line from time to time
    Json, ///< events, a JSON object on a line each
    None,
};

/// The files about which a table in HTML has pages.
enum class WhichPages {
    Needed, ///< those that failed or lost something
    All,
    None,
};

/// What the command line says to `adaptors batch` beside the options that `migrate` has too.
struct Options {
    std::vector<std::string> paths;
    std::string list; ///< the file with names, each ended by NUL; "-" is standard input; may be empty
    std::vector<std::string> include; ///< patterns; without any, all files are included
    std::vector<std::string> exclude;
    std::string state;
    std::string status; ///< the state whose table is wanted; empty for none
    std::vector<std::string> merge;
    std::string report;
    WhichPages pages = WhichPages::Needed;
    Shard shard;
    ProgressForm progress = ProgressForm::Auto;
    int jobs = 0;      ///< worker processes; 0: as many as there are cores
    int timeout = 600; ///< seconds for one file
    bool retryFailed = false;
    std::vector<std::string>
        workerOptions; ///< those that are passed on to workers, as words of a command line
};

} // namespace Batch
