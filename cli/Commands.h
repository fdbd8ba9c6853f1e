#pragma once

#include "Reader/AdaptorTable.h"

#include <cstdint>
#include <optional>
#include <string>

/// What the command line says.
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
    std::optional<std::uint64_t> maxMemory; ///< in bytes
    int to = Reader::currentVersion;
    bool force = false;
    bool inPlace = false;
    bool strict = false;
    bool json = false;
};

/// What the program does, a function for each command. Each gives the exit code; all but steps() throw Reader::Error
/// and Messages::Failure.
namespace Commands {

int migrate(const Arguments& arguments);
int steps(const Arguments& arguments);
int run(const Arguments& arguments);
int info(const Arguments& arguments);
int verify(const Arguments& arguments);
int trace(const Arguments& arguments);

} // namespace Commands
