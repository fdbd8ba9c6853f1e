#pragma once

#include <filesystem>

/// Paths of the tests' files in this checkout, and of the program under test.
namespace Tests {

std::filesystem::path casesFolder();
std::filesystem::path drawingsFolder(); ///< SVG texts
std::filesystem::path samplesFolder();
std::filesystem::path changesFile();      ///< CHANGES.md, the history of the schema
std::filesystem::path fuzzCorpusFolder(); ///< seeds and findings, a folder for each fuzz target
std::filesystem::path schemaFolder();     ///< of the JSON that the program prints
std::filesystem::path jsonChecker();      ///< a Python script that holds JSON against those
std::filesystem::path program();
std::filesystem::path poorFileSystem(); ///< a library to preload, see tests/preload

} // namespace Tests
