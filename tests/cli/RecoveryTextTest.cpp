// What the program says of a damaged file that was recovered.

#include "RecoveryText.h"
#include "JsonReport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using Reader::Damage;
using Reader::RecoveryReport;
using testing::HasSubstr;
using testing::Not;

namespace {

RecoveryReport eventful() {
    RecoveryReport report;
    report.findings = {
        {Damage::LostBytes, 4096, 12, 5, "512 bytes are lost inside of the Timeline::Clip 7."}};
    report.objectsWhole = 80;
    report.objectsClosed = 1;
    report.objectsDropped = 2;
    report.referencesCleared = 1;
    report.entriesDropped = 3;
    report.charactersReplaced = 4;
    report.clipsInPlace = 50;
    report.clipsMoved = {{5, "Beach\x1b"}};
    report.clipsReduced = {{6, "Village"}};
    report.clipsLost = {{7, "Boat"}, {8, ""}, {0, ""}};
    report.version = 64;
    report.versionGuess =
        Reader::VersionGuess{64, 66, {"a Timeline::Track has \"gapless\": version 46 or later"}};
    return report;
}

TEST(RecoveryText, SaysWhatWasRecoveredAndWhatNot) {
    EXPECT_EQ(
        Texts::recovery(eventful(), Terminal::Colours()),
        "  damaged file: something is missing\n"
        "    byte 4096, line 12, column 5: 512 bytes are lost inside of the Timeline::Clip 7.\n"
        "    schema version 64 by its content; it may be up to 66\n"
        "      a Timeline::Track has \"gapless\": version 46 or later\n"
        "    80 objects whole, 1 kept in part, 2 lost, 0 made anew\n"
        "    1 reference to lost objects cleared, 3 in lists removed\n"
        "    4 unreadable characters replaced by U+FFFD\n"
        "    50 clips recovered in place\n"
        "    1 clip recovered at the end of the timeline, because the time is lost: \"Beach\\x1b\" (id 5)\n"
        "    1 clip recovered in part, with the scene in it: \"Village\" (id 6)\n"
        "    3 clips lost: \"Boat\" (id 7), id 8, a clip without a name\n");
}

TEST(RecoveryText, SaysWhereNothingIsMissing) {
    RecoveryReport report;
    report.clipsInPlace = 1;
    const std::string text = Texts::recovery(report, Terminal::Colours());
    EXPECT_THAT(text, HasSubstr("damaged file: nothing is missing"));
    EXPECT_THAT(text, HasSubstr("1 clip recovered in place"));
    EXPECT_THAT(text, Not(HasSubstr("lost:")));
}

TEST(RecoveryText, ListsNoMoreThanPeopleRead) {
    RecoveryReport report;
    for (unsigned long long id = 1; id <= 25; ++id) {
        report.clipsLost.push_back({id, "Clip"});
        report.add({Damage::BrokenMarkup, 1, 1, 1, "Here is something that is no JSON."});
    }
    const std::string text = Texts::recovery(report, Terminal::Colours());
    EXPECT_THAT(text, HasSubstr("and 5 places more"));
    EXPECT_THAT(text, HasSubstr("\"Clip\" (id 20), and 5 more"));
}

TEST(RecoveryText, InJsonHasAllOfIt) {
    const JsonReport::Json json = JsonReport::recovery(eventful());
    EXPECT_EQ(json["complete"], false);
    EXPECT_EQ(json["findings"][0]["damage"], "lost-bytes");
    EXPECT_EQ(json["findings"][0]["byte"], 4096);
    EXPECT_EQ(json["version"], 64);
    EXPECT_EQ(json["versionGuess"]["highest"], 66);
    EXPECT_EQ(json["objects"]["lost"], 2);
    EXPECT_EQ(json["clips"]["inPlace"], 50);
    EXPECT_EQ(json["clips"]["moved"][0]["id"], 5);
    EXPECT_EQ(json["clips"]["lost"].size(), 3U);
    EXPECT_EQ(json["clips"]["lost"][0]["name"], "Boat");
    EXPECT_TRUE(JsonReport::recovery(RecoveryReport())["versionGuess"].is_null());
}

TEST(RecoveryText, InShort) {
    EXPECT_EQ(Texts::recoveryInShort(eventful()),
              "the file is damaged: 52 clips are recoverable, 3 are lost");
    RecoveryReport report;
    report.clipsInPlace = 1;
    EXPECT_EQ(Texts::recoveryInShort(report), "the file is damaged: 1 clip is recoverable");
    report.objectsDropped = 1;
    EXPECT_EQ(Texts::recoveryInShort(report),
              "the file is damaged: 1 clip is recoverable, something else is lost");
    report = {};
    report.findings = {{Damage::Version, 0, 1, 1, "The file states no schema version."}};
    EXPECT_EQ(Texts::recoveryInShort(report),
              "the schema version is missing or wrong: 0 clips are recoverable");
}

TEST(RecoveryText, AVersionAboveTheNewestMayBeANewerEditors) {
    RecoveryReport report;
    report.findings = {
        {Damage::Version, 0, 1, 1, "The file states a schema version that it can't have: 90."}};
    report.version = 77;
    report.versionGuess = Reader::VersionGuess{77, 77, {}};
    report.newerVersion = 90;
    EXPECT_FALSE(report.isComplete());
    EXPECT_THAT(Texts::recovery(report, Terminal::Colours()),
                HasSubstr("the file states version 90: a newer editor may have written it"));
    EXPECT_EQ(JsonReport::recovery(report)["newerVersion"], 90);
}

TEST(RecoveryReport, IsCompleteOnlyWhereNothingIsMissing) {
    EXPECT_TRUE(RecoveryReport().isComplete());
    EXPECT_FALSE(eventful().isComplete());
    RecoveryReport moved;
    moved.clipsMoved = {{1, "a"}};
    EXPECT_FALSE(moved.isComplete());
    RecoveryReport mended;
    mended.predeclarationsMended = mended.countsMended = 3;
    EXPECT_TRUE(mended.isComplete());
}

} // namespace
