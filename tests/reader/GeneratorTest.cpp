// The generated projects of the benchmarks: they have no more faults than the samples that they are made of,
// and the requested size.

#include "bench/Generator.h"
#include "Reader/Migration.h"
#include "Reader/Verify.h"
#include "support/Film.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <utility>

namespace {

const QString name = QStringLiteral("project");

std::size_t elementsOf(const QByteArray& text) {
    return static_cast<std::size_t>(text.count('<') - text.count("</") - text.count("<?"));
}

class GeneratorTest : public testing::TestWithParam<int> {};

TEST_P(GeneratorTest, TheProjectHasNoMoreFaultsThanTheSample) {
    const auto faultsOf = [](const QByteArray& text) {
        std::map<std::pair<Reader::Fault, std::string>, std::size_t> faults;
        for (const Reader::Finding& finding : Reader::verify(Reader::parse(text, name)))
            ++faults[{finding.fault, finding.className}];
        return faults;
    };
    const auto once = faultsOf(Bench::generateProject(GetParam(), {}));
    for (const std::size_t effects : {1U, 3U}) {
        const auto often = faultsOf(Bench::generateProject(GetParam(), {20000, 0, 0, effects}));
        for (const auto& [fault, count] : often)
            EXPECT_TRUE(once.count(fault)) << Reader::nameOf(fault.first) << ' ' << fault.second;
    }
}

TEST_P(GeneratorTest, ItMigratesWithAllItsClips) {
    Reader::MigrationOptions options;
    options.name = name;
    const auto reportOf = [&](const QByteArray& text) {
        Reader::Migration migration(Reader::parse(text, name), options);
        migration.run();
        migration.save();
        return migration.report();
    };
    const auto once = reportOf(Bench::generateProject(GetParam(), {}));
    const auto often = reportOf(Bench::generateProject(GetParam(), {20000, 0, 0, 0}));
    EXPECT_FALSE(often.hasErrors());
    EXPECT_TRUE(often.duplicateIds.empty());
    const std::size_t copies = often.clipsBefore / once.clipsBefore;
    EXPECT_GE(copies, 4u);
    EXPECT_EQ(often.clipsBefore, copies * once.clipsBefore);
    EXPECT_EQ(often.losses.size(), copies * once.losses.size());
    EXPECT_EQ(often.objectsBefore.at("Timeline::Clip"), copies * once.objectsBefore.at("Timeline::Clip"));
    EXPECT_EQ(often.clipsKept, copies * once.clipsKept);
}

INSTANTIATE_TEST_SUITE_P(Versions, GeneratorTest, testing::Values(3, 12, 27, 34, 45, 62));

TEST(Generator, ProjectsHaveTheRequestedSize) {
    const std::size_t further =
        elementsOf(Bench::generateProject(3, {5000})) - elementsOf(Bench::generateProject(3, {}));
    for (const std::size_t elements : {10000U, 50000U, 300000U}) {
        const std::size_t found = elementsOf(Bench::generateProject(3, {elements}));
        EXPECT_GE(found, elements);
        EXPECT_LT(found, elements + further);
    }
    EXPECT_GE(Bench::generateProject(28, {0, 1000000}).size(), 1000000);
    EXPECT_GE(Bench::generateProject(28, {0, 0, 500}).count("type=\"Timeline::Clip\""), 500);
}

TEST(Generator, EachCopyStartsAtTheEndOfThePrevious) {
    Reader::MigrationOptions options;
    options.name = name;
    Reader::Migration migration(Reader::parse(Bench::generateProject(45, {15000}), name), options);
    migration.run();
    const Tests::Project film(migration.save());
    std::set<long long> starts;
    for (const nlohmann::json& entry : film.timeline("Holiday").at("clips")) {
        if (film.follow(entry, "clip").at("name") == "Beach")
            starts.insert(film.follow(entry, "timing").at("timestamp").get<long long>());
    }
    // The clip starts after 4 seconds, and the sample takes 48.75.
    std::set<long long> expected;
    for (std::size_t copy = 0; copy < starts.size(); ++copy)
        expected.insert(4000 + 48750 * static_cast<long long>(copy));
    EXPECT_EQ(starts, expected);
    EXPECT_GE(starts.size(), 4u);
}

TEST(Generator, TheSameSizeGivesTheSameText) {
    EXPECT_EQ(Bench::generateProject(34, {20000, 0, 0, 2}), Bench::generateProject(34, {20000, 0, 0, 2}));
}

} // namespace
