#pragma once

#include <filesystem>

/// Where the tests' files stand in this checkout, and the program under test.
namespace Tests {

std::filesystem::path casesFolder();
std::filesystem::path drawingsFolder(); ///< SVG texts
std::filesystem::path samplesFolder();
std::filesystem::path changesFile();      ///< the history of the schema as people read it
std::filesystem::path fuzzCorpusFolder(); ///< seeds and findings, a folder for each fuzz target
std::filesystem::path program();
std::filesystem::path poorFileSystem(); ///< a library to preload, see tests/preload

} // namespace Tests
