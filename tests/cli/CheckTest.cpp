// Documents that need no migration, migrations that write nothing, and what stops a migration.

#include "support/ProgramTest.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

using nlohmann::json;
using Tests::archive;
using Tests::migratedName;
using Tests::Outcome;

namespace {

class CheckTest : public Tests::ProgramTest {
protected:
    /// Version 57 loses all clips of this archive, since its root object is no project content.
    static QByteArray losing() { return archive({}, " schemaVersion='56'"); }
    static QByteArray current() { return Tests::sample("holiday-v63.json"); }

    QByteArray newest() const {
        write("old.json", current());
        EXPECT_EQ(run({"migrate", "old.json", "-o", "newest.json"}).exitCode, 0);
        return read("newest.json");
    }
};

TEST_F(CheckTest, ADocumentOfTheNewestVersionIsLeftAlone) {
    write("film.json", newest());
    const QStringList before = files();
    for (const QStringList& arguments : {QStringList{"migrate", "film.json"},
                                         {"migrate", "film.json", "--in-place"},
                                         {"migrate", "film.json", "--force"},
                                         {"migrate", "film.json", "--check"},
                                         {"migrate", "film.json", "--strict=all"}}) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_EQ(outcome.err, "film.json: already at version 77, nothing to do\n");
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(files(), before);
    }
}

TEST_F(CheckTest, ANamedOutputGetsTheDocumentUnchanged) {
    QByteArray film = newest();
    film.replace("{\"", "{ \""); // not as the program writes it
    write("film.json", film);
    EXPECT_EQ(run({"migrate", "film.json", "-o", "copy.json"}).exitCode, 0);
    EXPECT_EQ(read("copy.json"), film);
    expectFailure({"migrate", "film.json", "-o", "copy.json"}, 16, "--force");
    const Outcome piped = run({"migrate", "-"}, film);
    EXPECT_EQ(piped.exitCode, 0);
    EXPECT_EQ(piped.out, film);
    EXPECT_EQ(run({"migrate", "film.json", "-o", "-"}).out, film);
}

TEST_F(CheckTest, AnArchiveOfTheVersionAskedForIsLeftAloneToo) {
    write("film.xml", archive());
    const Outcome outcome = run({"migrate", "film.xml", "--to", "62"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "film.xml: already at version 62, nothing to do\n");
    EXPECT_EQ(files(), QStringList({"film.xml"}));
}

TEST_F(CheckTest, ABundleIsMadeOfACurrentDocumentAllTheSame) {
    write("film.json", newest());
    EXPECT_EQ(run({"migrate", "film.json", "--bundle", "new"}).exitCode, 0);
    EXPECT_TRUE(exists("new/" + migratedName("film")));
}

TEST_F(CheckTest, AFolderWorksAgainBesideItsResult) {
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("project"));
    write("project/film.xml", archive());
    EXPECT_EQ(run({"migrate", "project"}).exitCode, 0);
    EXPECT_TRUE(exists("project/" + migratedName("film")));
    EXPECT_EQ(run({"migrate", "project", "--check"}).exitCode, 19);
    expectFailure({"migrate", "project"}, 16, "--force");
    EXPECT_EQ(run({"migrate", "project", "--force"}).exitCode, 0);
}

TEST_F(CheckTest, CheckSaysByItsExitCodeWhatAMigrationWouldDo) {
    write("good.xml", archive());
    write("losing.xml", losing());
    write("broken.xml", "<Archive");
    const QStringList before = files();
    EXPECT_EQ(run({"migrate", "good.xml", "--check"}).exitCode, 19);
    const Outcome losing = run({"migrate", "losing.xml", "--to", "62", "--check"});
    EXPECT_EQ(losing.exitCode, 14);
    EXPECT_TRUE(losing.err.contains("lost: clip \"Beach\" (id 3): no reference leads to it any more, V57"))
        << losing.err.toStdString();
    EXPECT_TRUE(losing.err.contains("nothing was written"));
    EXPECT_EQ(run({"migrate", "broken.xml", "--check"}).exitCode, 6);
    EXPECT_EQ(run({"migrate", "missing.xml", "--check"}).exitCode, 3);
    EXPECT_EQ(run({"migrate", "-", "--check"}, archive()).exitCode, 19);
    EXPECT_EQ(run({"migrate", "-", "--check"}, archive()).out, "");
    EXPECT_EQ(files(), before);
    for (const QStringList& other : {QStringList{"-o", "a.json"}, {"--in-place"}, {"--bundle", "new"}})
        EXPECT_EQ(run(QStringList{"migrate", "good.xml", "--check"} + other).exitCode, 2);
}

TEST_F(CheckTest, CheckDoesNotMindAnOutputThatExists) {
    write("film.xml", archive());
    write(migratedName("film"), "mine");
    EXPECT_EQ(run({"migrate", "film.xml", "--check"}).exitCode, 19);
    EXPECT_EQ(read(migratedName("film")), "mine");
}

TEST_F(CheckTest, CheckInJson) {
    write("losing.xml", losing());
    const Outcome outcome = run({"migrate", "losing.xml", "--to", "62", "--check", "--json"});
    const json value = json::parse(outcome.out.toStdString());
    EXPECT_EQ(value["output"], nullptr);
    EXPECT_EQ(value["error"]["code"], 14);
    EXPECT_EQ(value["error"]["kind"], "check");
    EXPECT_EQ(value["losses"][0]["step"], "V57_ProjectPersistentObjectAdaptor");
    EXPECT_EQ(value["losses"][0]["intended"], false);
    EXPECT_EQ(value["clips"]["in"], 1);
    EXPECT_EQ(value["clips"]["removed"], 1);
    EXPECT_EQ(value["clips"]["out"], 0);
}

TEST_F(CheckTest, StrictStopsForWhatIsNotIntended) {
    write("film.xml", Tests::sample("holiday-v45.xml"));
    write("losing.xml", losing());
    EXPECT_EQ(run({"migrate", "--strict", "film.xml"}).exitCode, 0); // the file is not the option's value
    EXPECT_EQ(run({"migrate", "film.xml", "--strict=all", "-o", "all.json"}).exitCode, 14);
    EXPECT_FALSE(exists("all.json"));
    EXPECT_EQ(run({"migrate", "losing.xml", "--to", "62", "--strict"}).exitCode, 14);
    EXPECT_FALSE(exists("losing.v62.xml"));
    expectFailure({"migrate", "film.xml", "--strict=some"}, 2, "--strict can't be \"some\"");
    write("good.xml", archive());
    EXPECT_EQ(run({"migrate", "good.xml", "--strict=all"}).exitCode, 0);
}

TEST_F(CheckTest, AResultThatIsNotWholeIsNoSuccess) {
    write("losing.xml", losing());
    const Outcome outcome = run({"migrate", "losing.xml", "--to", "62"});
    EXPECT_EQ(outcome.exitCode, 22);
    EXPECT_TRUE(exists("losing.v62.xml"));
    EXPECT_TRUE(outcome.err.contains("1 clip: 0 kept, 1 lost (no reference leads to it any more, V57)\n"))
        << outcome.err.toStdString();
}

TEST_F(CheckTest, AnErrorThatDoesNoHarmIsASuccess) {
    write("film.xml",
          archive(
              "<RootObject type='File' objectId='8'><composition type='ObjectRef' value='77'/></RootObject>",
              " schemaVersion='23'"));
    const Outcome outcome = run({"migrate", "film.xml", "--to", "24"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_TRUE(outcome.err.contains(
        "error: V24_CompositionRemoveAdaptor: Can not file composition object with id 77 "
        "(File, id 8): the markers of this file are missing already"))
        << outcome.err.toStdString();
    EXPECT_EQ(run({"migrate", "film.xml", "--to", "24", "--strict", "--force"}).exitCode, 14);
}

TEST_F(CheckTest, ASideFileThatIsMissingIsNoSuccess) {
    write("film.xml",
          archive("<RootObject type='Overlay::Preset' objectId='8'><items type='Array' size='1'>"
                  "<Item type='Item' index='1'><Data type='Overlay::Item' objectId='9'>"
                  "<text type='FileContent' value='content_1.svg'/></Data></Item></items></RootObject>"));
    EXPECT_EQ(run({"migrate", "film.xml"}).exitCode, 22);
    EXPECT_TRUE(exists(migratedName("film")));
}

TEST_F(CheckTest, CountsOfClipsAddUp) {
    write("film.xml", Tests::sample("holiday-v45.xml"));
    const Outcome outcome = run({"migrate", "film.xml"});
    EXPECT_TRUE(outcome.err.contains("25 clips: 23 kept, 2 removed (quizzes, V69); 2 added: 25\n"))
        << outcome.err.toStdString();
    EXPECT_FALSE(outcome.err.contains("lost"));
}

TEST_F(CheckTest, VerifyFailsOnTheSeverityThatIsAskedFor) {
    write("notes.xml", archive("<RootObject type='File' objectId='8'/>"));
    write("errors.xml",
          archive().replace("<Key type='ObjectRef' value='3'/>", "<Key type='ObjectRef' value='33'/>"));
    EXPECT_EQ(run({"verify", "notes.xml"}).exitCode, 0);
    EXPECT_EQ(run({"verify", "notes.xml", "--fail-on", "note"}).exitCode, 17);
    EXPECT_TRUE(run({"verify", "notes.xml"}).out.contains("  note: unreachable: File (id 8)"));
    EXPECT_EQ(run({"verify", "errors.xml"}).exitCode, 17);
    EXPECT_EQ(run({"verify", "errors.xml", "--fail-on=error"}).exitCode, 17);
    EXPECT_TRUE(run({"verify", "errors.xml"}).out.contains("  error: dangling-reference: "));
    expectFailure({"verify", "notes.xml", "--fail-on", "bad"}, 2, "error, warning or note");
}

} // namespace
