// What the program says of its work, as text.

#include "Summary.h"
#include "Reader/AdaptorTable.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using Reader::MigrationReport;
using Terminal::Colours;

namespace {

const Colours plain;
const Colours coloured(true);

/// A migration in which everything happened that is reported.
MigrationReport eventful() {
    MigrationReport report;
    report.formBefore = Bundle::Backend::Xml;
    report.formAfter = Bundle::Backend::Json;
    report.from = 60;
    report.to = 77;
    report.steps = {"V61_EffectProcessedRangeAdaptor", "V72_TrackTypeAdaptor"};
    report.skipped = {"V62_CollectionItemPayloadAdaptor"};
    report.log = {{"V61_EffectProcessedRangeAdaptor", "ERROR", "no\nrange", "a.cpp:1"},
                  {"XmlToJson", "WARNING", "odd\x1b value", "b.cpp:2"}};
    report.objectsBefore = {{"File", 2}, {"Timeline::Clip", 1}};
    report.objectsAfter = {{"File", 2}};
    report.clipsBefore = 3;
    report.clipsAfter = 1;
    report.lostClips = {{8, "Har\nbour"}, {9, ""}};
    report.duplicateIds = {3, 4};
    report.leftOut = 1;
    return report;
}

MigrationReport quiet() {
    MigrationReport report;
    report.from = 27;
    report.to = 62;
    report.steps = {"V28_ClipLabelAdaptor"};
    report.objectsBefore = report.objectsAfter = {{"File", 1}};
    report.clipsBefore = report.clipsAfter = 1;
    return report;
}

TEST(Summary, SaysWhatHappened) {
    const MigrationReport report = quiet();
    EXPECT_EQ(Texts::summary({report, "film.xml", "film.v62.xml"}, Texts::Detail::Usual, coloured),
              "film.xml: XML archive of schema version 27 -> XML archive of schema version 62\n"
              "  steps:   1 run\n"
              "  objects: 1 in, 1 out\n"
              "  clips:   1 in, 1 out\n"
              "  written: film.v62.xml\n");
    EXPECT_EQ(Texts::errors({report, "film.xml", "film.v62.xml"}, coloured), "");
    EXPECT_EQ(Texts::log(report, coloured), "");

    const MigrationReport other = eventful();
    EXPECT_EQ(Texts::summary({other, "fi\nlm", "o\x1b", "b\u202e"}, Texts::Detail::Steps, plain),
              "fi\\nlm: XML archive of schema version 60 -> JSON of schema version 77\n"
              "  steps:   2 run\n"
              "           V61_EffectProcessedRangeAdaptor\n"
              "           V72_TrackTypeAdaptor\n"
              "  warning: 1 step skipped, made for archives only: V62_CollectionItemPayloadAdaptor\n"
              "  error: V61_EffectProcessedRangeAdaptor: no\\nrange\n"
              "  warning: XmlToJson: odd\\x1b value\n"
              "  objects: 3 in, 2 out\n"
              "  1 object left out that nothing refers to\n"
              "  warning: 2 ids were used by several objects; the later ones have new ids\n"
              "  clips:   3 in, 1 out\n"
              "  lost clip: \"Har\\nbour\" (id 8)\n"
              "  lost clip: unnamed (id 9)\n"
              "  backup:  b\\u202e\n"
              "  written: o\\x1b\n");
}

TEST(Summary, OnlyErrorsAndLossesAreRed) {
    const MigrationReport report = eventful();
    const std::string text = Texts::summary({report, "film.xml"}, Texts::Detail::Usual, coloured);
    std::string red;
    for (std::size_t at = 0; (at = text.find("\x1b[31m", at)) != std::string::npos; ++at)
        red += text.substr(at + 5, text.find('\x1b', at + 5) - at - 5) + ' ';
    EXPECT_EQ(red, "error lost clip lost clip ");
    EXPECT_EQ(Texts::errors({report, "fi\nlm"}, coloured),
              "fi\\nlm: \x1b[31merror\x1b[0m: V61_EffectProcessedRangeAdaptor: no\\nrange\n"
              "fi\\nlm: \x1b[31mlost clip\x1b[0m: \"Har\\nbour\" (id 8)\n"
              "fi\\nlm: \x1b[31mlost clip\x1b[0m: unnamed (id 9)\n");
    EXPECT_EQ(Texts::log(report, coloured),
              "\x1b[31merror\x1b[0m: V61_EffectProcessedRangeAdaptor: no\\nrange\n"
              "\x1b[33mwarning\x1b[0m: XmlToJson: odd\\x1b value\n");
}

TEST(Summary, FindingsNameTheirPlace) {
    EXPECT_EQ(Texts::findings({}, "film.xml"), "film.xml: no findings\n");
    EXPECT_EQ(Texts::findings({{Reader::Fault::DanglingReference, "A\n", 2, "clips/0\x1b", "refers to 9", 9},
                               {Reader::Fault::DuplicateId, "", 3, "", "is there twice"}},
                              "fi\nlm"),
              "fi\\nlm: 2 findings\n"
              "  dangling-reference: A\\n (id 2) clips/0\\x1b: refers to 9\n"
              "  duplicate-id: (no class) (id 3): is there twice\n");
}

TEST(Summary, ProgressFitsANarrowTerminal) {
    EXPECT_EQ(Texts::progress("V28_ClipLabelAdaptor", 1, 57), "step 1 of 57: V28_ClipLabelAdaptor");
    EXPECT_EQ(Texts::progress("", 58, 57), "57 steps done, saving the result");
    for (const Reader::AdaptorRow& row : Reader::adaptorTable())
        EXPECT_LT(Texts::progress(std::string(row.className), 100, 100).size(), 60U) << row.className;
    EXPECT_EQ(Texts::readingFromTerminal(), "reading the project from the terminal; end with Ctrl-D\n");
}

} // namespace
