// The command `export`: where it writes, what it says, and its exit codes. What it writes is tested in tests/exchange.

#include "support/ProgramTest.h"

#include <nlohmann/json.hpp>

using nlohmann::json;
using Tests::archive;
using Tests::Outcome;
using Tests::sample;

namespace {

class ExportTest : public Tests::ProgramTest {
protected:
    json exported(const QString& name) const { return json::parse(read(name).toStdString()); }
};

TEST_F(ExportTest, WritesBesideTheProject) {
    write("film.xml", sample("holiday-v27.xml"));
    const Outcome outcome = run({"export", "film.xml"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_EQ(outcome.out, "");
    EXPECT_TRUE(outcome.err.contains("written: film.otio"));
    EXPECT_EQ(files(), (QStringList{"film.otio", "film.xml"}));
    EXPECT_EQ(exported("film.otio")["OTIO_SCHEMA"], "Timeline.1");
    EXPECT_EQ(exported("film.otio")["name"], "Holiday");
}

TEST_F(ExportTest, PathsCountFromTheFolderOfTheExport) {
    write("film.xml", sample("holiday-v27.xml"));
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("out"));
    EXPECT_EQ(run({"export", "film.xml", "-o", "out"}).exitCode, 0);
    EXPECT_TRUE(read("out/film.otio").contains("\"target_url\": \"../media/beach.mp4\""));
    EXPECT_EQ(run({"export", "film.xml"}).exitCode, 0);
    EXPECT_TRUE(read("film.otio").contains("\"target_url\": \"media/beach.mp4\""));
}

TEST_F(ExportTest, ExistingFilesAreKeptWithoutForce) {
    write("film.xml", sample("holiday-v27.xml"));
    write("film.otio", "mine");
    expectFailure({"export", "film.xml", "-o", "film.otio"}, 16, "--force");
    EXPECT_EQ(read("film.otio"), "mine");
    EXPECT_EQ(run({"export", "film.xml", "-o", "film.otio", "--force"}).exitCode, 0);
    EXPECT_EQ(exported("film.otio")["OTIO_SCHEMA"], "Timeline.1");
}

TEST_F(ExportTest, StandardOutputHasTheTimelineOnly) {
    const Outcome outcome = run({"export", "-", "-o", "-", "--json"}, sample("holiday-v63.json"));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_EQ(json::parse(outcome.out.toStdString())["OTIO_SCHEMA"], "Timeline.1");
    EXPECT_EQ(json::parse(outcome.err.toStdString())["output"], "standard output");
    // Without a file there is no folder to write to.
    EXPECT_EQ(run({"export", "-"}, sample("holiday-v63.json")).out, outcome.out);
}

TEST_F(ExportTest, SaysWhatTheFormatHasNoWordsFor) {
    write("film.json", sample("holiday-v76.json"));
    const Outcome outcome = run({"export", "film.json"});
    EXPECT_TRUE(outcome.err.contains("clip-feature")) << outcome.err.toStdString();
    EXPECT_TRUE(outcome.err.contains("\"Boat\" (stabilization)")) << outcome.err.toStdString();
    EXPECT_EQ(run({"export", "film.json", "-q", "--force"}).err, "");
}

TEST_F(ExportTest, LossesHaveTheExitCodesOfMigrate) {
    // Its second timeline is nested nowhere, so that its clip is lost.
    write("film.xml",
          archive(
              "<RootObject type='Timeline::Object' objectId='7'><clips type='Array' size='1'><Item>"
              "<Key type='ObjectRef' value='8'/><Value type='int32_t' value='0'/></Item></clips></RootObject>"
              "<RootObject type='Timeline::Clip' objectId='8'><name type='String' value='Harbour'/>"
              "</RootObject>"));
    EXPECT_EQ(run({"export", "film.xml", "--strict", "-o", "strict.otio"}).exitCode, 14);
    EXPECT_FALSE(exists("strict.otio"));
    EXPECT_EQ(run({"export", "film.xml"}).exitCode, run({"migrate", "film.xml"}).exitCode);
    EXPECT_TRUE(exists("film.otio"));
}

TEST_F(ExportTest, FailuresWriteNothing) {
    expectFailure({"export", "none.xml"}, 3, "none.xml");
    write("broken.xml", "<Archive");
    EXPECT_EQ(run({"export", "broken.xml"}).exitCode, 6);
    write("old.xml", archive({}, ""));
    expectFailure({"export", "old.xml"}, 11, "--from");
    EXPECT_EQ(files(), (QStringList{"broken.xml", "old.xml"}));
    EXPECT_EQ(run({"export", "old.xml", "--from", "62"}).exitCode, 0);
}

TEST_F(ExportTest, DamagedFilesNeedRepair) {
    write("cut.json", sample("holiday-v76.json").left(30000));
    EXPECT_EQ(run({"export", "cut.json"}).exitCode, 7);
    EXPECT_EQ(run({"export", "cut.json", "--repair"}).exitCode, 22);
    EXPECT_EQ(exported("cut.otio")["OTIO_SCHEMA"], "Timeline.1");
}

TEST_F(ExportTest, KnowsOneFormat) {
    write("film.xml", sample("holiday-v27.xml"));
    EXPECT_EQ(run({"export", "film.xml", "--format", "otio"}).exitCode, 0);
    expectFailure({"export", "film.xml", "--format", "edl", "--force"}, 2, "otio");
    expectFailure({"export"}, 2, "FILE");
}

TEST_F(ExportTest, TheSameProjectGivesTheSameBytes) {
    write("film.xml", sample("holiday-v3.xml"));
    run({"export", "film.xml", "-o", "one.otio"});
    run({"export", "film.xml", "-o", "two.otio"});
    EXPECT_GT(read("one.otio").size(), 10000);
    EXPECT_EQ(read("one.otio"), read("two.otio"));
}

} // namespace
