// What a migration reports of clips, effects and titles that its result does not reach, and of the objects that log lines
// are about.

#include "Reader/Migration.h"
#include "support/ProgramTest.h"

#include <gtest/gtest.h>

using Reader::Loss;
using Reader::MigrationReport;
using Reader::PartKind;
using Tests::archive;

namespace {

MigrationReport migrate(const QByteArray& bytes, int to, bool canReread = true) {
    Reader::MigrationOptions options;
    options.name = QStringLiteral("film.xml");
    options.to = to;
    const auto read = [&] { return Reader::parse(bytes, options.name); };
    if (canReread)
        options.reread = read;
    Reader::Migration migration(read(), options);
    migration.run();
    return migration.report();
}

/// A second timeline that nothing refers to, with a clip of its own and one that is not there.
const QByteArray unusedTimeline =
    "<RootObject type='Timeline::Object' objectId='20'><clips type='Array' size='2'>"
    "<Item type='Item' index='1'><Key type='ObjectRef' value='21'/></Item>"
    "<Item type='Item' index='2'><Key type='ObjectRef' value='99'/></Item></clips>"
    "</RootObject><RootObject type='Timeline::Clip' objectId='21'>"
    "<name type='String' value='Harbour'/></RootObject>";

TEST(Losses, APartThatAStepLosesHasTheStep) {
    // The root object of this archive is no project content, which version 57 needs.
    const MigrationReport report = migrate(archive({}, " schemaVersion='56'"), 62);
    ASSERT_EQ(report.losses.size(), 1u);
    const Loss& loss = report.losses[0];
    EXPECT_EQ(loss.part.kind, PartKind::Clip);
    EXPECT_EQ(loss.part.id, 3u);
    EXPECT_EQ(loss.part.name, "Beach");
    EXPECT_EQ(loss.step, "V57_ProjectPersistentObjectAdaptor");
    EXPECT_EQ(loss.reason, "no reference leads to it any more");
    EXPECT_FALSE(loss.isIntended);
    EXPECT_TRUE(report.hasUnintendedLosses());
    EXPECT_EQ(report.clipsBefore, 1u);
    EXPECT_EQ(report.clipsKept, 0u);
}

TEST(Losses, WithoutTheInputTheStepIsNotKnown) {
    const MigrationReport report = migrate(archive({}, " schemaVersion='56'"), 62, false);
    ASSERT_EQ(report.losses.size(), 1u);
    EXPECT_EQ(report.losses[0].step, "");
    EXPECT_EQ(report.losses[0].reason, "it is not in the result");
    EXPECT_FALSE(report.losses[0].isIntended);
}

TEST(Losses, WhatTheProjectDidNotUseIsNoHarm) {
    const MigrationReport report = migrate(archive(unusedTimeline), 77);
    ASSERT_EQ(report.losses.size(), 1u); // a reference to nothing is no clip
    EXPECT_EQ(report.losses[0].part.id, 21u);
    EXPECT_EQ(report.losses[0].step, "");
    EXPECT_EQ(report.losses[0].reason, "nothing in the project used it");
    EXPECT_FALSE(report.losses[0].isIntended);
    EXPECT_FALSE(report.losses[0].wasUsed);
    EXPECT_TRUE(report.hasUnintendedLosses());
    EXPECT_FALSE(report.hasHarmfulLosses());
    EXPECT_EQ(report.clipsBefore, 2u);
    EXPECT_EQ(report.clipsKept, 1u);
}

TEST(Losses, NothingIsReportedWhereNothingIsLost) {
    const MigrationReport report = migrate(archive(), 77);
    EXPECT_TRUE(report.losses.empty());
    EXPECT_EQ(report.clipsKept, 1u);
    EXPECT_EQ(report.clipsAdded, 0u);
    EXPECT_EQ(report.clipsAfter(), 1u);
}

TEST(Losses, QuizzesAreRemovedOnPurpose) {
    const MigrationReport report = migrate(Tests::sample("holiday-v45.xml"), 77, false);
    std::size_t quizzes = 0;
    for (const Loss& loss : report.losses) {
        EXPECT_TRUE(loss.isIntended) << loss.part.className << ' ' << loss.step;
        EXPECT_NE(loss.step, "") << loss.part.className;
        if (loss.part.kind == PartKind::Clip) {
            EXPECT_EQ(loss.step, "V69_RemoveQuizzesAdaptor");
            EXPECT_EQ(loss.cause, "quizzes");
            ++quizzes;
        }
    }
    EXPECT_EQ(quizzes, 2u); // "Where was the boat?" and "Church quiz"
    EXPECT_EQ(report.clipsBefore, report.clipsKept + quizzes);
    EXPECT_EQ(report.clipsAfter(), report.clipsKept + report.clipsAdded);
}

TEST(Losses, OfJsonDocumentsAsWell) {
    const QByteArray project =
        R"({"version":"1.0","schemaVersion":68,"data":{"@meta":{"class_name":"Timeline::Object","object_id":1},
            "clips":[{"clip":{"@meta":{"class_name":"Timeline::Clip","object_id":2},"name":"Quiz","type":32},
                      "timing":{"@meta":{"class_name":"Timeline::ClipTiming","object_id":3},
                                "timestamp":0,"duration":10}},
                     {"clip":{"@meta":{"class_name":"Timeline::Clip","object_id":4},"name":"Beach","type":1},
                      "timing":{"@meta":{"class_name":"Timeline::ClipTiming","object_id":5},
                                "timestamp":0,"duration":10}}]}})";
    const MigrationReport report = migrate(project, 69, false);
    ASSERT_EQ(report.losses.size(), 1u);
    EXPECT_EQ(report.losses[0].part.id, 2u);
    EXPECT_EQ(report.losses[0].step, "V69_RemoveQuizzesAdaptor");
    EXPECT_TRUE(report.losses[0].isIntended);
    EXPECT_EQ(report.clipsBefore, 2u);
    EXPECT_EQ(report.clipsKept, 1u);
    EXPECT_EQ(report.clipsAdded, 0u);
}

TEST(LoggedObjects, AnEffectLeadsToItsClip) {
    QByteArray film = archive("<RootObject type='Effect::SideBySide' objectId='8'>"
                              "<mode type='int32_t' value='9'/></RootObject>",
                              " schemaVersion='41'");
    film.replace(
        "<name type='String' value='Beach'/>",
        "<name type='String' value='Beach'/><effects type='Array' size='1'><Item type='Item' index='1'>"
        "<Data type='ObjectRef' value='8'/></Item></effects>");
    film.replace("<timestamp type='int64_t' value='0'/>", "<timestamp type='int64_t' value='39000'/>");
    const MigrationReport report = migrate(film, 42);
    ASSERT_EQ(report.log.size(), 1u);
    EXPECT_EQ(report.log[0].step, "V42_SideBySideTransformAdaptor");
    const auto& object = report.log[0].object;
    ASSERT_TRUE(object);
    EXPECT_EQ(object->className, "Effect::SideBySide");
    EXPECT_EQ(object->id, 8u);
    ASSERT_TRUE(object->clip);
    EXPECT_EQ(object->clip->id, 3u);
    EXPECT_EQ(object->clip->name, "Beach");
    EXPECT_EQ(object->clip->time, 39000);
}

TEST(LoggedObjects, AnObjectOfNoClipHasNone) {
    const MigrationReport report = migrate(archive("<RootObject type='Effect::SideBySide' objectId='8'>"
                                                   "<mode type='int32_t' value='9'/></RootObject>",
                                                   " schemaVersion='41'"),
                                           42);
    ASSERT_EQ(report.log.size(), 1u);
    ASSERT_TRUE(report.log[0].object);
    EXPECT_EQ(report.log[0].object->id, 8u);
    EXPECT_FALSE(report.log[0].object->clip);
}

TEST(LoggedObjects, AClipThatIsMissingIsReportedWithItsTimeline) {
    // A timeline lists a clip that is not there, so the step leaves the whole document as it is.
    QByteArray film = archive({}, " schemaVersion='45'");
    film.replace("<Key type='ObjectRef' value='3'/>", "<Key type='ObjectRef' value='33'/>");
    const MigrationReport report = migrate(film, 46);
    ASSERT_FALSE(report.log.empty());
    for (const Reader::LogLine& line : report.log) {
        if (line.text == "Not found element for timeline clip") {
            ASSERT_TRUE(line.object);
            EXPECT_EQ(line.object->className, "Timeline::Object");
            EXPECT_FALSE(line.object->clip);
        }
    }
}

} // namespace
