#pragma once

#include "Reader/AdaptorTable.h"

#include <optional>
#include <string>

/// The values of the options and arguments on the command line. Empty if not given.
struct Arguments {
    std::string file;
    std::string output;
    std::string step;
    std::string bundle;
    std::string folder;
    std::string packagesRoot;
    std::string aiModelsRoot;
    std::string downloadableRoot;
    std::optional<int> from;
    int to = Reader::currentVersion;
    bool force = false;
    bool inPlace = false;
    bool strict = false;
    bool json = false;
};

/// The commands of the program. Each function gives the exit code. All except steps() throw Reader::Error and
/// Messages::Failure.
namespace Commands {

int migrate(const Arguments& arguments);
int steps(const Arguments& arguments);
int run(const Arguments& arguments);
int info(const Arguments& arguments);
int verify(const Arguments& arguments);
int trace(const Arguments& arguments);

} // namespace Commands
