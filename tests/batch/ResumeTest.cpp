// A batch goes on where it was stopped, and does nothing twice.

#include "support/Batch.h"
#include "support/Sanitizers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <iostream>
#include <random>

using testing::ElementsAre;
using testing::Pair;
using testing::UnorderedElementsAre;

namespace {

const QString state = QStringLiteral("out/adaptors-batch.sqlite");
const QStringList toOut = {"in", "--output-dir", "out"};

class ResumeTest : public Tests::BatchTest {
protected:
    /// Writes other bytes and keeps the time of change.
    void replaceSecretly(const QByteArray& name, const QByteArray& bytes) const { put(name, bytes); }

    /// A folder with some of everything: projects large and small, one that fails, a bundle, other files.
    void makeFolder() const {
        QDir(path("in")).removeRecursively();
        for (int number = 0; number < 4; ++number) {
            put("in/sub/clip" + QByteArray::number(number) + ".xml", oldProject());
            put("in/film" + QByteArray::number(number) + ".json", Tests::sample("holiday-v63.json"));
        }
        put("in/middle.xml", Tests::sample("holiday-v62.xml"));
        put("in/cut.xml", oldProject().chopped(20));
        put("in/notes.txt", "no project");
        put("in/current.json", newestProject());
        for (const char* name : {"content_1.svg", "content_2.svg", "content_3.svg", "holiday.xml"})
            put("in/bundle/" + QByteArray(name),
                Tests::sample(("holiday-v20-bundle/" + std::string(name)).c_str()));
    }

    /// Runs a batch that is killed at random moments until it comes to its end, `kills` times in sum, and compares what
    /// it makes with what an undisturbed run makes.
    void expectKillsToChangeNothing(const QStringList& arguments, const QString& file, int kills) {
        makeFolder();
        QElapsedTimer timer;
        timer.start();
        const int code = batch(arguments);
        const auto whole = static_cast<int>(timer.elapsed());
        const auto expectedTree = tree(".");
        const auto expectedRows = rows(file);
        const unsigned int seed = std::random_device()();
        std::cout << "seed " << seed << ", a run takes " << whole << " ms\n";
        std::minstd_rand random(seed);
        std::uniform_int_distribution<int> wait(0, whole * 1000);
        int rounds = 0;
        for (int killed = 0; killed < kills; ++rounds) {
            ASSERT_LT(rounds, kills * 10) << "nothing could be killed";
            QDir(path("out")).removeRecursively();
            QFile::remove(path(file));
            makeFolder();
            int last = -2;
            while (last == -2 && killed < kills) {
                Tests::BackgroundRun run(QStringList{"batch"} + arguments, m_folder.path(),
                                         Tests::withoutCounters());
                usleep(static_cast<useconds_t>(wait(random)));
                run.signal(SIGKILL);
                last = run.wait();
                killed += last == -2;
            }
            if (last == -2)
                last = batch(arguments);
            ASSERT_EQ(last, code) << "seed " << seed << '\n' << m_outcome.err.toStdString();
            ASSERT_EQ(tree("."), expectedTree) << "seed " << seed;
            ASSERT_EQ(rows(file), expectedRows) << "seed " << seed;
        }
    }
};

TEST_F(ResumeTest, WhatIsDoneAndUnchangedIsNotEvenRead) {
    put("in/a.xml", oldProject("Beach"));
    put("in/b.xml", oldProject("Beach"));
    put("in/c.json", newestProject());
    ASSERT_EQ(batch(toOut), 0);
    const auto before = rows(state);
    // With another content, but the same size and time, a file looks unchanged unless it is read.
    replaceSecretly("in/a.xml", oldProject("Coast"));
    EXPECT_EQ(batch(toOut + QStringList{"--json"}), 0);
    EXPECT_EQ(m_outcome.out.count('\n'), 1) << m_outcome.out.toStdString(); // no file, only the end
    EXPECT_TRUE(m_outcome.out.contains("\"kept\":3")) << m_outcome.out.toStdString();
    EXPECT_EQ(rows(state), before);
    EXPECT_TRUE(read("out/a.v77.json").contains("Beach"));
    // A file that is changed is done again, and its old result replaced.
    write("in/a.xml", oldProject("Island"));
    EXPECT_EQ(batch(toOut + QStringList{"--json"}), 0);
    EXPECT_EQ(m_outcome.out.count('\n'), 2);
    EXPECT_TRUE(read("out/a.v77.json").contains("Island"));
    // So is one whose result is gone.
    QFile::remove(path("out/b.v77.json"));
    EXPECT_EQ(batch(toOut), 0);
    EXPECT_TRUE(exists("out/b.v77.json"));
}

TEST_F(ResumeTest, AResultThatSomeoneChangedIsNotReplaced) {
    put("in/a.xml", oldProject());
    put("in/b.xml", oldProject());
    put("out/b.v77.json", "precious");
    EXPECT_EQ(batch(toOut), 20);
    EXPECT_EQ(query(state, "SELECT code, kind FROM files WHERE state = 'failed'"), "16|output-exists");
    EXPECT_EQ(read("out/b.v77.json"), "precious");
    write("out/a.v77.json", "edited");
    write("in/a.xml", oldProject("Island"));
    EXPECT_EQ(batch(toOut), 20);
    EXPECT_EQ(read("out/a.v77.json"), "edited");
    EXPECT_EQ(batch(toOut + QStringList{"--force"}), 0);
    EXPECT_TRUE(read("out/a.v77.json").contains("Island"));
    EXPECT_TRUE(read("out/b.v77.json").contains("Beach"));
}

TEST_F(ResumeTest, FailedFilesAreTakenAgainOnlyWhereThatIsWanted) {
    put("in/a.xml", oldProject());
    put("in/b.xml", oldProject().chopped(20));
    EXPECT_EQ(batch(toOut), 20);
    // The same size and time, but whole now.
    put("in/b.xml", oldProject().chopped(20).replace("<Archive", "<Project"));
    EXPECT_EQ(batch(toOut), 20);
    EXPECT_EQ(query(state, "SELECT kind FROM files WHERE state = 'failed'"), "broken-xml");
    EXPECT_EQ(batch(toOut + QStringList{"--retry-failed", "--json"}), 20);
    EXPECT_EQ(m_outcome.out.count('\n'), 2) << m_outcome.out.toStdString();
    // A changed file is another one.
    write("in/b.xml", oldProject("Island"));
    EXPECT_EQ(batch(toOut), 0);
    EXPECT_TRUE(read("out/b.v77.json").contains("Island"));
}

TEST_F(ResumeTest, ForceDoesAllAgain) {
    put("in/a.xml", oldProject("Beach"));
    ASSERT_EQ(batch(toOut), 0);
    replaceSecretly("in/a.xml", oldProject("Coast"));
    EXPECT_EQ(batch(toOut + QStringList{"--force"}), 0);
    EXPECT_TRUE(read("out/a.v77.json").contains("Coast"));
}

TEST_F(ResumeTest, AStateBelongsToItsOptions) {
    put("in/a.xml", oldProject());
    ASSERT_EQ(batch(toOut), 0);
    for (const QStringList& others :
         {QStringList{"--to", "70"}, QStringList{"--strict"}, QStringList{"--packages-root", "/p"}}) {
        EXPECT_EQ(batch(toOut + others), 2);
        EXPECT_TRUE(m_outcome.err.contains("belongs to a batch with other options"))
            << m_outcome.err.toStdString();
    }
    // These don't change results.
    EXPECT_EQ(
        batch(toOut + QStringList{"-j", "3", "--timeout", "100", "--max-memory", "2G", "--progress", "none"}),
        0);
    EXPECT_EQ(batch(toOut + QStringList{"--to", "70", "--force", "--state", "other"}), 0);
    EXPECT_EQ(batch(toOut + QStringList{"--to", "70", "--force"}), 0);
    EXPECT_EQ(query(state, "SELECT to_version, output FROM files"), "70|a.v70.json");
    EXPECT_TRUE(exists("out/a.v70.json"));
}

TEST_F(ResumeTest, AStateBelongsToItsShard) {
    put("in/a.xml", oldProject());
    EXPECT_EQ(batch(toOut + QStringList{"--shard", "1/3", "--state", "part"}), 0);
    EXPECT_EQ(batch(toOut + QStringList{"--shard", "2/3", "--state", "part"}), 2);
    EXPECT_TRUE(m_outcome.err.contains("--shard 1/3")) << m_outcome.err.toStdString();
}

TEST_F(ResumeTest, WhatIsNoStateIsRefused) {
    put("in/a.xml", oldProject());
    write("text", "hello");
    EXPECT_EQ(batch(toOut + QStringList{"--state", "text"}), 15);
    EXPECT_EQ(read("text"), "hello");
    EXPECT_EQ(run({"batch", "--status", "missing"}).exitCode, 15);
    EXPECT_FALSE(exists("missing"));
    ASSERT_EQ(batch(toOut), 0);
    query(state, "PRAGMA user_version = 2");
    EXPECT_EQ(batch(toOut), 2);
    EXPECT_TRUE(m_outcome.err.contains("this state has version 2")) << m_outcome.err.toStdString();
    query(state, "PRAGMA application_id = 1");
    EXPECT_EQ(batch(toOut), 2);
    EXPECT_TRUE(m_outcome.err.contains("this is no state of a batch")) << m_outcome.err.toStdString();
}

TEST_F(ResumeTest, InPlaceKeepsBackupsAndGoesOn) {
    put("in/a.xml", oldProject("Beach"));
    put("in/sub/b.xml", oldProject("Coast"));
    put("in/current.json", newestProject());
    put("in/a.xml.bak", "an earlier backup");
    const QStringList inPlace = {"in", "--in-place"};
    EXPECT_EQ(batch(inPlace), 0) << m_outcome.err.toStdString();
    EXPECT_THAT(names("in"), ElementsAre("a.xml", "a.xml.bak", "a.xml.bak2", "current.json", "sub/b.xml",
                                         "sub/b.xml.bak"));
    EXPECT_EQ(read("in/a.xml.bak"), "an earlier backup");
    EXPECT_EQ(read("in/a.xml.bak2"), oldProject("Beach"));
    EXPECT_TRUE(read("in/a.xml").startsWith('{'));
    EXPECT_EQ(read("in/current.json"), newestProject());
    const QString file = "in/adaptors-batch.sqlite";
    EXPECT_THAT(column(file, "state"),
                UnorderedElementsAre(Pair("a.xml", "done"), Pair("sub/b.xml", "done"),
                                     Pair("current.json", "current"), Pair("a.xml.bak", "skipped")));
    const auto before = tree("in");
    EXPECT_EQ(batch(inPlace + QStringList{"--json"}), 0);
    EXPECT_EQ(m_outcome.out.count('\n'), 1) << m_outcome.out.toStdString();
    EXPECT_EQ(tree("in"), before);
    // A file that came back is another one.
    put("in/a.xml", oldProject("Island"));
    EXPECT_EQ(batch(inPlace), 0);
    EXPECT_EQ(read("in/a.xml.bak3"), oldProject("Island"));
}

/// How often each of two tests kills the run. Under a sanitizer a run takes seconds.
constexpr int kills = Tests::isSanitized ? 10 : 50;

TEST_F(ResumeTest, KillsChangeNothing) {
    expectKillsToChangeNothing(toOut + QStringList{"-j2"}, state, kills);
}

TEST_F(ResumeTest, KillsChangeNothingInPlace) {
    expectKillsToChangeNothing({"in", "--in-place", "-j2"}, "in/adaptors-batch.sqlite", kills);
}

TEST_F(ResumeTest, WhatAKilledRunLeftIsRemoved) {
    put("in/a.xml", oldProject());
    put("in/bundle/content_1.svg", Tests::sample("holiday-v20-bundle/content_1.svg"));
    put("in/bundle/holiday.xml", Tests::sample("holiday-v20-bundle/holiday.xml"));
    put("in/z.xml", oldProject());
    const int code = batch(toOut);
    const auto expected = tree("out");
    const auto expectedRows = rows(state);
    // As if the run had been killed at its worst moments.
    query(state, "UPDATE files SET state = 'working', fresh = 1 WHERE state <> 'skipped'");
    put("out/a.v77.json.123-1.tmp", "half");
    put("out/bundle/content_1.svg.123-2.tmp", "half");
    put("out/bundle/content_17.svg", "left");
    put("out/other.v77.json.123-1.tmp", "not ours");
    EXPECT_EQ(batch(toOut), code);
    EXPECT_EQ(read("out/other.v77.json.123-1.tmp"), "not ours");
    QFile::remove(path("out/other.v77.json.123-1.tmp"));
    EXPECT_EQ(tree("out"), expected);
    EXPECT_EQ(rows(state), expectedRows);
}

class KilledInPlaceTest : public ResumeTest {
protected:
    /// A file that is migrated and has a backup; but the run was killed before it recorded that.
    void SetUp() override {
        put("in/a.xml", oldProject());
        ASSERT_EQ(batch(inPlace), 0);
        m_tree = tree("in");
        m_rows = rows(inPlaceState);
        ASSERT_THAT(names("in"), ElementsAre("a.xml", "a.xml.bak"));
        query(inPlaceState, "UPDATE files SET state = 'working'");
    }
    /// Gives a file a time of change that is so many seconds later than now.
    void setTime(const QString& name, int seconds) const {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(
            file.setFileTime(QDateTime::currentDateTime().addSecs(seconds), QFile::FileModificationTime));
    }
    /// A run after someone put another project of the same size in the place of the result.
    void expectThatAnotherProjectStays(int seconds) {
        put("in/a.xml", oldProject("Coast"));
        setTime("in/a.xml", seconds);
        EXPECT_EQ(batch(inPlace), 0);
        EXPECT_EQ(read("in/a.xml.bak"), oldProject("Beach"));
        EXPECT_EQ(read("in/a.xml.bak2"), oldProject("Coast"));
        EXPECT_TRUE(read("in/a.xml").contains("Coast"));
    }

    const QStringList inPlace = {"in", "--in-place"};
    const QString inPlaceState = QStringLiteral("in/adaptors-batch.sqlite");
    std::map<std::string, std::string> m_tree = {};
    std::vector<std::string> m_rows = {};
};

TEST_F(KilledInPlaceTest, AResultThatWasNotRecordedIsMadeAgain) {
    EXPECT_EQ(batch(inPlace), 0);
    EXPECT_EQ(tree("in"), m_tree); // no second backup, and the first is the old project
    EXPECT_EQ(rows(inPlaceState), m_rows);
}

TEST_F(KilledInPlaceTest, ABackupOfAFileThatIsStillTheOldOneIsRemoved) {
    put("in/a.xml", oldProject());
    EXPECT_EQ(batch(inPlace), 0);
    EXPECT_EQ(tree("in"), m_tree);
    EXPECT_EQ(rows(inPlaceState), m_rows);
}

TEST_F(KilledInPlaceTest, AResultThatSomeoneChangedSinceStays) {
    const QByteArray edited = newestProject();
    write("in/a.xml", edited);
    setTime("in/a.xml", 60);
    EXPECT_EQ(batch(inPlace), 0);
    EXPECT_EQ(read("in/a.xml"), edited);
    EXPECT_EQ(read("in/a.xml.bak"), oldProject());
}

TEST_F(KilledInPlaceTest, ABackupThatSomeoneChangedSinceIsNotPutBack) {
    const QByteArray result = read("in/a.xml");
    write("in/a.xml.bak", "something else");
    EXPECT_EQ(batch(inPlace), 0);
    EXPECT_EQ(read("in/a.xml"), result);
    EXPECT_EQ(read("in/a.xml.bak"), "something else");
}

TEST_F(KilledInPlaceTest, ANewerFileThatSomeonePutThereStays) {
    expectThatAnotherProjectStays(60);
}

TEST_F(KilledInPlaceTest, AnOlderFileThatSomeonePutBackStays) {
    expectThatAnotherProjectStays(-3600); // as with cp --preserve
}

TEST_F(KilledInPlaceTest, AFileThatIsGoneIsNotMadeOfItsBackup) {
    QFile::remove(path("in/a.xml"));
    EXPECT_EQ(batch(inPlace + QStringList{"--exclude", "*.bak"}), 20);
    EXPECT_EQ(column(inPlaceState, "state || ' ' || kind")["a.xml"], "failed unreadable");
    EXPECT_FALSE(exists("in/a.xml"));
    EXPECT_EQ(read("in/a.xml.bak"), oldProject());
}

TEST_F(ResumeTest, OneRunWorksWithAState) {
    put("in/film.xml", largeProject());
    Tests::BackgroundRun first({"batch", "in", "--output-dir", "out"}, m_folder.path());
    const pid_t worker = first.aWorker();
    ASSERT_GT(worker, 0);
    kill(worker, SIGSTOP);
    EXPECT_EQ(batch(toOut), 15);
    EXPECT_TRUE(m_outcome.err.contains("another run is at work with this state"))
        << m_outcome.err.toStdString();
    // But others may look at it.
    EXPECT_EQ(run({"batch", "--status", state}).exitCode, 0);
    kill(worker, SIGCONT);
    EXPECT_EQ(first.wait(), 0);
    EXPECT_FALSE(exists(state + ".lock"));
    // The lock of a run that was killed does not count.
    write(state + ".lock", "999999999\n");
    EXPECT_EQ(batch(toOut), 0);
    EXPECT_FALSE(exists(state + ".lock"));
}

TEST_F(ResumeTest, WorkersThatStillEndAreWaitedFor) {
    put("in/a.xml", oldProject());
    ASSERT_EQ(batch(toOut), 0);
    // The run is gone, but something that it started has the lock still.
    write(state + ".lock", "999999999\n");
    const int lock = open(QFile::encodeName(path(state + ".lock")).constData(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(flock(lock, LOCK_EX), 0);
    Tests::BackgroundRun run(QStringList{"batch"} + toOut, m_folder.path());
    usleep(500000);
    EXPECT_TRUE(run.isRunning());
    close(lock);
    EXPECT_EQ(run.wait(), 0);
}

} // namespace
