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
    const Reader::Part clip{Reader::PartKind::Clip, 8, "Timeline::Clip", "Har\nbour", 8, 3723004};
    report.log = {{"V61_EffectProcessedRangeAdaptor", "ERROR", "no\nrange", "a.cpp:1", {}},
                  {"V42_SideBySideTransformAdaptor", "ERROR", "Unexpected SideBySide mode. Assuming sbsLeft",
                   "c.cpp:3", Reader::LoggedObject{"Effect::Side\n", 4, clip}},
                  {"XmlToJson", "WARNING", "odd\x1b value", "b.cpp:2", {}}};
    report.objectsBefore = {{"File", 2}, {"Timeline::Clip", 1}};
    report.objectsAfter = {{"File", 2}};
    report.clipsBefore = 3;
    report.clipsKept = 1;
    report.clipsAdded = 2;
    const auto part = [](Reader::PartKind kind, unsigned long long id, const char* name) {
        return Reader::Part{kind, id, "A::Class", name, 8, {}};
    };
    report.losses = {
        {part(Reader::PartKind::Clip, 8, "Har\nbour"), "V57_ProjectPersistentObjectAdaptor",
         "nothing leads to it", false},
        {part(Reader::PartKind::Clip, 9, ""), "V69_RemoveQuizzesAdaptor", "quizzes", true},
        {part(Reader::PartKind::Effect, 10, ""), "V32_ColorFiltersAdaptor", "it became others", true},
        {part(Reader::PartKind::Effect, 11, ""), "V32_ColorFiltersAdaptor", "it became others", true},
        {part(Reader::PartKind::Title, 12, ""), "XmlToJson", "nothing leads to it", false}};
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
    report.clipsBefore = report.clipsKept = 1;
    return report;
}

TEST(Summary, SaysWhatHappened) {
    const MigrationReport report = quiet();
    EXPECT_EQ(Texts::summary({report, "film.xml", "film.v62.xml"}, Texts::Detail::Usual, coloured),
              "film.xml: XML archive of schema version 27 -> XML archive of schema version 62\n"
              "  steps:   1 run\n"
              "  objects: 1 in, 1 out\n"
              "  1 clip: 1 kept\n"
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
              "  error: V42_SideBySideTransformAdaptor: Unexpected SideBySide mode. Assuming sbsLeft (clip "
              "\"Har\\nbour\" at 1:02:03.004, Effect::Side\\n, id 4): this side-by-side effect shows its "
              "picture on "
              "the left now\n"
              "  warning: XmlToJson: odd\\x1b value\n"
              "  objects: 3 in, 2 out\n"
              "  1 object left out that nothing refers to\n"
              "  warning: 2 ids were used by several objects; the later ones have new ids\n"
              "  3 clips: 1 kept, 1 lost (nothing leads to it, V57), 1 removed (quizzes, V69); 2 "
              "added: 3\n"
              "  lost: clip \"Har\\nbour\" (id 8): nothing leads to it, V57\n"
              "  lost: title \"A::Class\" (id 12): nothing leads to it, XmlToJson\n"
              "  removed: 2 effects: each became others, V32\n"
              "  backup:  b\\u202e\n"
              "  written: o\\x1b\n");
}

TEST(Summary, OnlyErrorsAndLossesAreRed) {
    const MigrationReport report = eventful();
    const std::string text = Texts::summary({report, "film.xml"}, Texts::Detail::Usual, coloured);
    std::string red;
    for (std::size_t at = 0; (at = text.find("\x1b[31m", at)) != std::string::npos; ++at)
        red += text.substr(at + 5, text.find('\x1b', at + 5) - at - 5) + ' ';
    EXPECT_EQ(red, "error error lost lost ");
    EXPECT_EQ(
        Texts::errors({report, "fi\nlm"}, coloured),
        "fi\\nlm: \x1b[31merror\x1b[0m: V61_EffectProcessedRangeAdaptor: no\\nrange\n"
        "fi\\nlm: \x1b[31merror\x1b[0m: V42_SideBySideTransformAdaptor: Unexpected SideBySide mode. Assuming "
        "sbsLeft (clip \"Har\\nbour\" at 1:02:03.004, Effect::Side\\n, id 4): this side-by-side effect shows "
        "its "
        "picture on the left now\n"
        "fi\\nlm: \x1b[31mlost\x1b[0m: clip \"Har\\nbour\" (id 8): nothing leads to it, V57\n"
        "fi\\nlm: \x1b[31mlost\x1b[0m: title \"A::Class\" (id 12): nothing leads to it, XmlToJson\n");
    EXPECT_EQ(
        Texts::log(report, coloured),
        "\x1b[31merror\x1b[0m: V61_EffectProcessedRangeAdaptor: no\\nrange\n"
        "\x1b[31merror\x1b[0m: V42_SideBySideTransformAdaptor: Unexpected SideBySide mode. Assuming sbsLeft "
        "(clip \"Har\\nbour\" at 1:02:03.004, Effect::Side\\n, id 4): this side-by-side effect shows its "
        "picture "
        "on the left now\n"
        "\x1b[33mwarning\x1b[0m: XmlToJson: odd\\x1b value\n");
}

TEST(Summary, WhatHasNoNameAndNoTime) {
    MigrationReport report = quiet();
    const Reader::Part clip{Reader::PartKind::Clip, 8, "", "", 8};
    report.log = {{"V42_SideBySideTransformAdaptor", "ERROR", "odd", "c.cpp:3",
                   Reader::LoggedObject{"Effect::SideBySide", 4, clip}}};
    report.losses = {{clip, "", "nothing leads to it"}, {clip, "XmlToJson", "nothing used it", false, false}};
    EXPECT_EQ(Texts::errors({report, "film.xml"}, plain),
              "film.xml: error: V42_SideBySideTransformAdaptor: odd (a clip without a name, "
              "Effect::SideBySide, id 4)\n"
              "film.xml: lost: clip without a name (id 8): nothing leads to it\n"
              "film.xml: left out: clip without a name (id 8): nothing used it, XmlToJson\n");
}

TEST(Summary, RepairsNameTheFirstOfWhatTheyConcern) {
    Reader::RepairMade repair;
    repair.name = "some-repair";
    repair.before = "V4_SomeAdaptor";
    repair.text = "things were put right";
    const std::string start = "repaired: some-repair, before V4_SomeAdaptor: things were put right";
    EXPECT_EQ(Texts::repairs({repair}), start + '\n');
    repair.objects = {{"File", 3}};
    EXPECT_EQ(Texts::repairs({repair}), start + "; object File (id 3)\n");
    const auto clip = [](unsigned long long id, const char* name) {
        return Reader::LoggedObject{"Effect::Blur", id + 100,
                                    Reader::Part{Reader::PartKind::Clip, id, "", name, id}};
    };
    repair.objects.push_back(clip(1, "Beach"));
    repair.objects.push_back(clip(2, ""));
    EXPECT_EQ(Texts::repairs({repair}), start + "; clips \"Beach\", id 2\n");
    for (unsigned long long id = 3; id <= 7; ++id)
        repair.objects.push_back(clip(id, "Boat"));
    EXPECT_EQ(Texts::repairs({repair}),
              start + "; clips \"Beach\", id 2, \"Boat\", \"Boat\", \"Boat\" and 2 more\n");
    Reader::RepairMade ofText = repair;
    ofText.objects.clear();
    ofText.places = {{3, 14, "U+0001"}};
    ofText.count = 3;
    EXPECT_EQ(Texts::repairs({ofText}), start + "; places 3:14 U+0001 and 2 more\n");
}

TEST(Summary, FindingsNameTheirPlace) {
    using Reader::Fault;
    using Reader::Severity;
    EXPECT_EQ(Texts::findings({}, "film.xml", plain), "film.xml: no findings\n");
    const std::vector<Reader::Finding> findings = {
        {Fault::DanglingReference, Severity::Error, "A\n", 2, "clips/0\x1b", "refers to 9", 9},
        {Fault::WrongSize, Severity::Warning, "", 3, "", "size is 4", 0},
        {Fault::Unreachable, Severity::Note, "B", 4, "", "not used", 0}};
    EXPECT_EQ(Texts::findings(findings, "fi\nlm", plain),
              "fi\\nlm: 3 findings\n"
              "  error: dangling-reference: A\\n (id 2) clips/0\\x1b: refers to 9\n"
              "  warning: wrong-size: (no class) (id 3): size is 4\n"
              "  note: unreachable: B (id 4): not used\n");
    EXPECT_EQ(Texts::findings(findings, "film", coloured),
              "film: 3 findings\n"
              "  \x1b[31merror\x1b[0m: dangling-reference: A\\n (id 2) clips/0\\x1b: refers to 9\n"
              "  \x1b[33mwarning\x1b[0m: wrong-size: (no class) (id 3): size is 4\n"
              "  note: unreachable: B (id 4): not used\n");
}

TEST(Summary, ProgressFitsANarrowTerminal) {
    EXPECT_EQ(Texts::progress("V28_ClipLabelAdaptor", 1, 57), "step 1 of 57: V28_ClipLabelAdaptor");
    EXPECT_EQ(Texts::progress("", 58, 57), "57 steps done, saving the result");
    for (const Reader::AdaptorRow& row : Reader::adaptorTable())
        EXPECT_LT(Texts::progress(std::string(row.className), 100, 100).size(), 60U) << row.className;
    EXPECT_EQ(Texts::readingFromTerminal(), "reading the project from the terminal; end with Ctrl-D\n");
}

} // namespace
