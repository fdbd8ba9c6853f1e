// The table of repairs.

#include "Repairs/RepairTable.h"
#include "Reader/AdaptorTable.h"
#include "support/Files.h"
#include "support/Paths.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <string>

namespace {

bool isPlace(std::string_view place) {
    return place == Repairs::parsing || place == Repairs::loading || place == Repairs::conversion ||
           Reader::findAdaptor(place) != nullptr;
}

TEST(RepairTable, EachRowIsComplete) {
    std::set<std::string_view> names;
    for (const Repairs::RepairRow& row : Repairs::repairTable()) {
        const std::string name(row.name);
        EXPECT_TRUE(std::regex_match(name, std::regex("[a-z]+(-[a-z]+)*"))) << name;
        EXPECT_TRUE(names.insert(row.name).second) << name;
        EXPECT_EQ(Repairs::findRepair(row.name), &row);
        EXPECT_TRUE(row.summary.ends_with('.')) << name;
        EXPECT_TRUE(row.hasText() || row.hasXml() || row.hasJson()) << name;
        const auto places = row.places();
        EXPECT_FALSE(places.empty()) << name;
        for (const std::string_view place : places) {
            EXPECT_TRUE(isPlace(place)) << name << ' ' << place;
            EXPECT_TRUE(row.looksBefore(place));
            EXPECT_EQ(place == Repairs::parsing, row.hasText()) << name;
        }
        EXPECT_FALSE(row.looksBefore("")) << name;
        EXPECT_FALSE(row.looksBefore("V1_NoSuchAdaptor")) << name;
    }
    EXPECT_EQ(Repairs::findRepair("no-such-repair"), nullptr);
    EXPECT_GE(names.size(), 20u);
}

TEST(RepairTable, AStepIsThereInTheFormOfItsRepair) {
    for (const Repairs::RepairRow& row : Repairs::repairTable()) {
        for (const std::string_view place : row.places()) {
            const Reader::AdaptorRow* adaptor = Reader::findAdaptor(place);
            if (!adaptor || row.name == "old-collections") // which does what a step does for archives only
                continue;
            EXPECT_TRUE(!row.hasXml() || adaptor->hasXml()) << row.name << ' ' << place;
            EXPECT_TRUE(!row.hasJson() || adaptor->hasJson()) << row.name << ' ' << place;
        }
    }
}

TEST(RepairTable, TheDocumentationHasEachRepair) {
    const std::string text = Tests::readFile(Tests::schemaFolder().parent_path() / "repairs.md");
    for (const Repairs::RepairRow& row : Repairs::repairTable())
        EXPECT_NE(text.find("`" + std::string(row.name) + "`"), std::string::npos) << row.name;
}

} // namespace
