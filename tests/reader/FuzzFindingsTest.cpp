// Runs the former findings of the fuzz targets, in tests/fuzz/corpus, through the reader.

#include "Reader/Error.h"
#include "Reader/Migration.h"
#include "Reader/Verify.h"
#include "support/Files.h"
#include "support/IndexedSteps.h"
#include "support/Paths.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace fs = std::filesystem;
using Reader::Document;

namespace {

std::vector<fs::path> findings() {
    std::vector<fs::path> files;
    for (const char* target : {"ReaderFuzz", "ConverterFuzz", "XmlChainFuzz", "JsonChainFuzz"}) {
        const fs::path folder = Tests::fuzzCorpusFolder() / target;
        if (!fs::exists(folder))
            continue;
        for (const auto& entry : fs::directory_iterator(folder))
            files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

/// The bytes of the migrated document; empty if it is refused.
QByteArray saved(const QByteArray& bytes) {
    Reader::MigrationOptions options;
    options.name = options.location = options.target = QStringLiteral("film");
    try {
        Document document = Reader::parse(bytes, options.name);
        Reader::verify(document);
        document.setVersion(document.version().value_or(0));
        EXPECT_EQ(Tests::indexDifferenceAfterSteps(document), "");
        Reader::Migration migration(std::move(document), options);
        migration.run();
        return migration.save();
    } catch (const Reader::Error&) {
        return {};
    }
}

TEST(FuzzFindings, AreRefusedOrMigratedToWhatCanBeRead) {
    const auto files = findings();
    ASSERT_FALSE(files.empty());
    for (const fs::path& file : files) {
        SCOPED_TRACE(file.filename());
        const QByteArray bytes = saved(QByteArray::fromStdString(Tests::readFile(file)));
        if (!bytes.isEmpty()) {
            EXPECT_EQ(Reader::serialize(Reader::parse(bytes, QStringLiteral("film"))).bytes, bytes);
        }
    }
}

TEST(FuzzFindings, TheTextOfAnErrorDoesNotEndAtANul) {
    const Reader::Error error(Reader::ErrorKind::UnknownStep, {.step = std::string("V1\0\0a", 5)});
    EXPECT_STREQ(error.what(), "V1\\x00\\x00a: there is no such step");
    EXPECT_EQ(error.facts().step.size(), 5u);
}

} // namespace
