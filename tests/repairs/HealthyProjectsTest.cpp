// A project that needs no repair gives the same bytes with and without.

#include "bench/Generator.h"
#include "repairs/OldProject.h"
#include "support/Files.h"
#include "support/Holiday.h"
#include "support/Paths.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <random>

using Tests::Migrated;
using Tests::migrateOld;

namespace {

std::string sampleText(const Tests::Sample& sample) {
    return std::string(sample.file);
}

/// What old versions wrote twice is in most samples of old versions, on purpose.
bool hasDoubledFields(const Migrated& migrated) {
    return migrated.repairs() == std::vector<std::string>{"doubled-fields"};
}

TEST(HealthyProjects, SamplesNeedNoOtherRepair) {
    for (const Tests::Sample& sample : Tests::samples) {
        const QByteArray bytes = Tests::bytesOf(sample);
        const Migrated plain = migrateOld(bytes, false);
        const Migrated repaired = migrateOld(bytes, true);
        ASSERT_FALSE(repaired.error) << sampleText(sample);
        if (repaired.report.repairs.empty())
            EXPECT_TRUE(repaired.bytes == plain.bytes) << sampleText(sample);
        else
            EXPECT_TRUE(hasDoubledFields(repaired)) << sampleText(sample);
        EXPECT_EQ(repaired.report.clipsKept, plain.report.clipsKept) << sampleText(sample);
        EXPECT_EQ(repaired.report.log.size(), plain.report.log.size()) << sampleText(sample);
    }
    for (const int version : {27, 60, 62, 63, 70, 76})
        EXPECT_TRUE(migrateOld(Tests::bytesOf(Tests::sampleOf(version)), true).report.repairs.empty())
            << version;
}

/// A healthy project of that version with a few clips, effects and nested timelines, by chance.
QByteArray randomProject(std::mt19937& random, int version) {
    const auto below = [&](int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random); };
    const bool hasTracks = version >= 27;
    Tests::OldProject project(version);
    long long id = 1;
    std::vector<long long> timelines;
    for (int count = 1 + below(3); count > 0; --count) {
        const long long timeline = ++id;
        std::vector<std::pair<long long, int>> tracks;
        for (const int type : {80, 64, 48, 16})
            tracks.emplace_back(++id, type);
        std::vector<Tests::Entry> entries;
        long long end = 0;
        for (int clips = 1 + below(5); clips > 0; --clips) {
            const int place = below(4);
            const long long clip = ++id;
            const long long timing = ++id;
            const long long duration = 1000 + below(4000);
            entries.push_back(
                {clip, timing,
                 hasTracks ? tracks[std::size_t(place)].first : tracks[std::size_t(place)].second, end,
                 duration});
            end += duration;
            const std::string name = "Clip " + std::to_string(clip);
            if (place == 0) {
                project.title(clip, name, ++id);
                continue;
            }
            std::string more;
            if (below(2) == 0) {
                const long long file = ++id;
                project.object("File", file, Tests::text("path", "media/" + std::to_string(file)));
                more = Tests::ref("file", file);
            }
            if (place == 1 && !timelines.empty()) {
                more += Tests::ref("nestedTimeline", timelines.back());
                timelines.pop_back();
            }
            project.clip(clip, place == 2 ? 3 : 1, name, more);
        }
        std::vector<long long> ids;
        for (const auto& [track, type] : tracks)
            ids.push_back(track);
        project.timeline(timeline, "Timeline " + std::to_string(timeline), entries,
                         hasTracks ? Tests::refs("tracks", ids) : "");
        if (hasTracks)
            project.tracks(timeline, tracks);
        timelines.push_back(timeline);
        if (version >= 35 && version < 57 && count == 1)
            project.content(id + 1, timeline);
        else
            project.root(timeline);
        id += 2;
    }
    return project.bytes();
}

TEST(HealthyProjects, RandomOnesNeedNoneAndGiveTheSameBytes) {
    std::mt19937 random(15); // the same projects on every run
    for (int round = 0; round < 300; ++round) {
        const int version = std::vector{4, 12, 21, 26, 27, 34, 40, 45, 50, 56, 62}[std::size_t(round) % 11];
        const QByteArray bytes = randomProject(random, version);
        const Migrated plain = migrateOld(bytes, false);
        ASSERT_FALSE(plain.error) << plain.error->what() << " at version " << version;
        const Migrated repaired = migrateOld(bytes, true);
        ASSERT_EQ(repaired.repairs(), std::vector<std::string>()) << bytes.toStdString();
        ASSERT_TRUE(repaired.bytes == plain.bytes) << bytes.toStdString();
    }
}

/// The version before a step, from its class name: 50 for V51_MaskEffectAdaptor; 62 for names without a number.
int versionBefore(const std::string& className) {
    const int number = std::atoi(className.c_str() + 1);
    return className.front() == 'V' && number > 0 ? number - 1 : Reader::lastXmlVersion;
}

/// The documents of the tests of single steps have all that is odd.
TEST(HealthyProjects, ADocumentThatPassesWithoutRepairsPassesWithThem) {
    std::size_t passed = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(Tests::casesFolder())) {
        const std::filesystem::path& file = entry.path();
        if (file.filename() != "before.xml")
            continue;
        const std::string className = file.parent_path().parent_path().filename().string();
        const int version = std::min(versionBefore(className), Reader::lastXmlVersion);
        QByteArray bytes = QByteArray::fromStdString(Tests::readFile(file));
        const int tag = bytes.indexOf("<Archive");
        if (tag < 0)
            continue;
        if (!bytes.contains("schemaVersion"))
            bytes.insert(tag + 8, " schemaVersion=\"" + QByteArray::number(version) + '"');
        const Migrated plain = migrateOld(bytes, false);
        const Migrated repaired = migrateOld(bytes, true);
        if (plain.error)
            continue;
        ++passed;
        EXPECT_FALSE(repaired.error) << file << ' ' << repaired.error->what();
        if (repaired.report.repairs.empty()) {
            EXPECT_TRUE(repaired.bytes == plain.bytes) << file;
        }
        EXPECT_GE(repaired.report.clipsKept, plain.report.clipsKept) << file;
    }
    EXPECT_GE(passed, 40u);
}

TEST(HealthyProjects, GeneratedOnesNeedWhatTheirSampleNeeds) {
    // They are made of samples of old versions, which have doubled fields.
    for (const int version : {3, 12, 27, 34, 45, 55, 62}) {
        const Migrated repaired = migrateOld(Bench::generateProject(version, {6000}), true);
        EXPECT_TRUE(hasDoubledFields(repaired)) << version;
        Tests::expectWhole(repaired);
    }
}

} // namespace
