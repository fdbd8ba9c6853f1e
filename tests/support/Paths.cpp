#include "support/Paths.h"

namespace Tests {

std::filesystem::path casesFolder() {
    return TESTS_DIR "/cases";
}

std::filesystem::path drawingsFolder() {
    return TESTS_DIR "/stored/svg";
}

std::filesystem::path samplesFolder() {
    return SAMPLES_DIR;
}

std::filesystem::path changesFile() {
    return CHANGES_FILE;
}

std::filesystem::path fuzzCorpusFolder() {
    return TESTS_DIR "/fuzz/corpus";
}

std::filesystem::path schemaFolder() {
    return SAMPLES_DIR "/../docs/schema";
}

std::filesystem::path jsonChecker() {
    return TESTS_DIR "/cli/check_json.py";
}

std::filesystem::path program() {
    return ADAPTORS_PROGRAM;
}

std::filesystem::path poorFileSystem() {
    return POOR_FILE_SYSTEM;
}

} // namespace Tests
