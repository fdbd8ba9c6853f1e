// If one file fails, all others are migrated.

#include "support/Batch.h"
#include "support/Sanitizers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>

using testing::ElementsAre;
using testing::Pair;
using testing::UnorderedElementsAre;

namespace {

const QString state = QStringLiteral("out/adaptors-batch.sqlite");
const QStringList toOut = {"in", "--output-dir", "out"};

class FailureTest : public Tests::BatchTest {
protected:
    /// A run with one worker that is stopped while it has the first file, a.xml; the others are small. On a busy machine
    /// the worker may have done that file before it is stopped: then the run starts again.
    std::pair<std::unique_ptr<Tests::BackgroundRun>, pid_t> stoppedRun(const QStringList& options = {}) {
        put("in/a.xml", largeProject());
        for (const char* name : {"in/b.xml", "in/c.xml", "in/d.xml"})
            put(name, oldProject());
        for (int attempt = 0; attempt < 20; ++attempt) {
            QDir(path("out")).removeRecursively();
            auto run = std::make_unique<Tests::BackgroundRun>(
                QStringList{"batch"} + toOut + QStringList{"-j1"} + options, m_folder.path());
            const pid_t worker = run->aWorker();
            if (worker > 0)
                kill(worker, SIGSTOP);
            if (worker > 0 && !exists("out/a.v77.json"))
                return {std::move(run), worker};
            if (worker > 0)
                kill(worker, SIGCONT);
            run->wait();
        }
        return {nullptr, 0};
    }
    void expectOnlyTheFirstFailed(const std::string& kind) const {
        EXPECT_THAT(column(state, "state || ' ' || coalesce(kind, '')"),
                    UnorderedElementsAre(Pair("a.xml", "failed " + kind), Pair("b.xml", "done "),
                                         Pair("c.xml", "done "), Pair("d.xml", "done ")));
        EXPECT_THAT(names("out"), ElementsAre("b.v77.json", "c.v77.json", "d.v77.json"));
    }
};

TEST_F(FailureTest, AWorkerThatIsKilledCostsOneFile) {
    for (const int signal : {SIGKILL, SIGSEGV, SIGTERM}) {
        auto [run, worker] = stoppedRun({"--force"});
        ASSERT_GT(worker, 0);
        kill(worker, signal);
        kill(worker, SIGCONT);
        EXPECT_EQ(run->wait(), 20);
        expectOnlyTheFirstFailed("crashed");
        EXPECT_EQ(column(state, "code")["a.xml"], "1");
    }
    EXPECT_EQ(batch(toOut), 20);
    EXPECT_TRUE(m_outcome.out.contains("/in/a.xml: the process that migrated it"))
        << m_outcome.out.toStdString();
    EXPECT_EQ(batch(toOut + QStringList{"--retry-failed"}), 0);
    EXPECT_EQ(names("out").size(), 4U);
}

TEST_F(FailureTest, AWorkerThatHangsCostsOneFile) {
    auto [run, worker] = stoppedRun({"--timeout", "3"});
    ASSERT_GT(worker, 0);
    EXPECT_EQ(run->wait(), 20);
    expectOnlyTheFirstFailed("timeout");
}

TEST_F(FailureTest, MemoryThatRunsOutCostsOneFile) {
    if (Tests::isSanitized)
        GTEST_SKIP() << "a sanitizer's own memory would not fit into the bound";
    put("in/a.xml", oldProject());
    put("in/large.json",
        Tests::jsonProject(R"({"@meta":{"class_name":"A","object_id":2},"a":[)" +
                           QByteArray("{\"@meta\":{\"class_name\":\"A\"}},").repeated(200000) + "1]}"));
    put("in/z.xml", oldProject());
    EXPECT_EQ(batch(toOut + QStringList{"-j1", "--max-memory", "60M", "--json"}), 20);
    EXPECT_THAT(column(state, "state || ' ' || coalesce(code, '') || ' ' || coalesce(kind, '')"),
                UnorderedElementsAre(Pair("a.xml", "done 0 "), Pair("large.json", "failed 18 out-of-memory"),
                                     Pair("z.xml", "done 0 ")));
    EXPECT_TRUE(m_outcome.out.contains("more memory than --max-memory allows, 60 MiB"))
        << m_outcome.out.toStdString();
    EXPECT_THAT(names("out"), ElementsAre("a.v77.json", "z.v77.json"));
}

TEST_F(FailureTest, AFileThatVanishesFails) {
    auto [run, worker] = stoppedRun();
    ASSERT_GT(worker, 0);
    QFile::remove(path("in/c.xml"));
    kill(worker, SIGCONT);
    EXPECT_EQ(run->wait(), 20);
    EXPECT_EQ(column(state, "kind")["c.xml"], "unreadable");
    EXPECT_THAT(names("out"), ElementsAre("a.v77.json", "b.v77.json", "d.v77.json"));
}

TEST_F(FailureTest, AFileThatChangesBeforeItsTurnIsTakenAsItIs) {
    auto [run, worker] = stoppedRun();
    ASSERT_GT(worker, 0);
    write("in/c.xml", oldProject("Island"));
    kill(worker, SIGCONT);
    EXPECT_EQ(run->wait(), 0);
    EXPECT_TRUE(read("out/c.v77.json").contains("Island"));
    const auto before = rows(state);
    EXPECT_EQ(batch(toOut), 0); // and is known as such
    EXPECT_EQ(rows(state), before);
}

TEST_F(FailureTest, AFileThatChangesMeanwhileFailsAndIsTakenAgain) {
    const QByteArray bytes = largeProject();
    bool isHeld = false;
    for (int attempt = 0; attempt < 20 && !isHeld; ++attempt) { // the worker may be done before it is stopped
        QDir(path("out")).removeRecursively();
        put("in/a.xml", bytes);
        Tests::BackgroundRun run(QStringList{"batch"} + toOut + QStringList{"-j1"}, m_folder.path());
        const pid_t worker = run.aWorker();
        ASSERT_GT(worker, 0);
        // All is read: now it migrates.
        Tests::waitUntil([&] { return Tests::bytesReadBy(worker) > bytes.size() || !run.isRunning(); });
        kill(worker, SIGSTOP);
        isHeld = !exists("out/a.v77.json");
        write("in/a.xml", bytes + "\n");
        kill(worker, SIGCONT);
        const int code = run.wait();
        isHeld = isHeld && code == 20;
    }
    ASSERT_TRUE(isHeld);
    EXPECT_EQ(column(state, "code || ' ' || kind")["a.xml"], "15 changed-meanwhile");
    EXPECT_FALSE(exists("out/a.v77.json"));
    EXPECT_EQ(batch(toOut), 0); // it has changed since
    EXPECT_TRUE(exists("out/a.v77.json"));
}

TEST_F(FailureTest, ResultsThatAreNotWholeAreNotFine) {
    put("in/film.xml",
        oldProject().replace(
            "</Archive>",
            "<RootObject type='Timeline::Object' objectId='7'><clips type='Array' size='1'><Item>"
            "<Key type='ObjectRef' value='8'/><Value type='int32_t' value='0'/></Item></clips></RootObject>"
            "<RootObject type='Timeline::Clip' objectId='8'><name type='String' value='Harbour'/>"
            "</RootObject></Archive>"));
    put("in/fine.xml", oldProject());
    const int single = run({"migrate", "in/film.xml", "-o", "single.json"}).exitCode;
    EXPECT_EQ(batch(toOut), single == 0 ? 0 : 20);
    EXPECT_EQ(column(state, "code")["film.xml"], std::to_string(single));
    EXPECT_EQ(batch(toOut + QStringList{"--strict", "--state", "strict", "--force"}), 20);
    EXPECT_EQ(column("strict", "state || ' ' || code || ' ' || kind")["film.xml"], "failed 14 strict");
    EXPECT_EQ(column("strict", "losses")["film.xml"], "1");
}

TEST_F(FailureTest, CheckWritesNothing) {
    put("in/old.xml", oldProject());
    put("in/newest.json", newestProject());
    const auto before = tree(".");
    EXPECT_EQ(batch({"in", "--check"}), 0);
    EXPECT_EQ(tree("."), before);
    EXPECT_TRUE(m_outcome.out.contains("2 projects: 1 to be migrated, 1 current already, 0 failed"))
        << m_outcome.out.toStdString();
    put("in/cut.xml", oldProject().chopped(20));
    EXPECT_EQ(batch({"in", "--check", "--state", "found.sqlite"}), 20);
    EXPECT_THAT(column("found.sqlite", "state || ' ' || code"),
                UnorderedElementsAre(Pair("old.xml", "done 19"), Pair("newest.json", "current 0"),
                                     Pair("cut.xml", "failed 6")));
}

TEST_F(FailureTest, AFolderThatCannotBeWrittenCostsItsFiles) {
    put("in/a/film.xml", oldProject());
    put("in/b/film.xml", oldProject());
    put("out/a", "a file where a folder is to be");
    EXPECT_EQ(batch(toOut), 20);
    EXPECT_THAT(column(state, "state || ' ' || code"),
                UnorderedElementsAre(Pair("a/film.xml", "failed 15"), Pair("b/film.xml", "done 0")));
    QFile::remove(path("out/a"));
    if (geteuid() != 0) {
        QDir().mkdir(path("out/a"));
        ASSERT_EQ(chmod(QFile::encodeName(path("out/a")).constData(), 0500), 0);
        EXPECT_EQ(batch(toOut + QStringList{"--retry-failed"}), 20);
        EXPECT_EQ(column(state, "code")["a/film.xml"], "15");
        ASSERT_EQ(chmod(QFile::encodeName(path("out/a")).constData(), 0700), 0);
    }
    EXPECT_EQ(batch(toOut + QStringList{"--retry-failed"}), 0);
    // A state that can't be written ends the run.
    EXPECT_EQ(batch(toOut + QStringList{"--state", "nowhere/state"}), 15);
    EXPECT_EQ(batch({"in", "--output-dir", "in/a/film.xml"}), 15);
}

TEST_F(FailureTest, AFullDiskIsReportedAndTheRunGoesOnAfterwards) {
    put("in/a.xml", oldProject());
    put("in/large.xml", oldProject().replace("Beach", QByteArray(300000, 'x')));
    put("in/z.xml", oldProject());
    // No file may grow beyond 200 blocks of 512 bytes; the state stays below that.
    const Tests::Outcome full = runAfter("ulimit -f 200; ", QStringList{"batch"} + toOut);
    EXPECT_EQ(full.exitCode, 20) << full.err.toStdString();
    EXPECT_THAT(column(state, "state || ' ' || code"),
                UnorderedElementsAre(Pair("a.xml", "done 0"), Pair("z.xml", "done 0"),
                                     Pair("large.xml", "failed 15")));
    EXPECT_THAT(names("out"), ElementsAre("a.v77.json", "z.v77.json"));
    EXPECT_EQ(batch(toOut + QStringList{"--retry-failed"}), 0);
    EXPECT_EQ(names("out").size(), 3U);
    // Where the state itself does not fit, the run ends and says why.
    const Tests::Outcome noState = runAfter("ulimit -f 20; ", {"batch", "in", "--output-dir", "out2"});
    EXPECT_EQ(noState.exitCode, 15) << noState.err.toStdString();
    EXPECT_TRUE(noState.err.contains("the state of a batch can't be used")) << noState.err.toStdString();
    EXPECT_EQ(run({"batch", "in", "--output-dir", "out2"}).exitCode, 0);
    EXPECT_EQ(tree("out2"), tree("out"));
}

TEST_F(FailureTest, WorkersThatCannotBeStartedEndTheRunAndTheNextGoesOn) {
    if (Tests::isSanitized)
        GTEST_SKIP() << "a sanitizer needs to open files, too";
    for (int number = 0; number < 8; ++number)
        put("in/" + QByteArray::number(number) + ".xml", oldProject());
    // Each worker takes an open file; how many others there are is not known here.
    Tests::Outcome outcome = {};
    for (int files = 24; files > 6 && outcome.exitCode == 0; --files) {
        QDir(path("out")).removeRecursively();
        outcome = runAfter(QStringLiteral("ulimit -n %1; ").arg(files),
                           QStringList{"batch"} + toOut + QStringList{"-j8"});
    }
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_TRUE(outcome.err.contains("no worker process can be started: Too many open files"))
        << outcome.err.toStdString();
    EXPECT_EQ(batch(toOut), 0) << m_outcome.err.toStdString();
    EXPECT_EQ(names("out").size(), 8U); // the results, and nothing unfinished
}

TEST_F(FailureTest, ThousandsOfFiles) {
    // In memory where that is possible: the test is not about the disk.
    const QString memory = QStringLiteral("/dev/shm");
    QTemporaryDir folder((QFileInfo(memory).isWritable() ? memory : QDir::tempPath()) + "/adaptors-XXXXXX");
    const std::filesystem::path root = folder.path().toStdString();
    constexpr int count = Tests::isSanitized ? 1000 : 10000;
    const std::string project =
        newestProject().replace("\"schemaVersion\": 77", "\"schemaVersion\": 76").toStdString();
    for (int number = 0; number < count; ++number) {
        const auto place = root / "in" / std::to_string(number % 100);
        if (number < 100)
            std::filesystem::create_directories(place);
        std::ofstream(place / (std::to_string(number) + ".json")) << project;
    }
    const QStringList arguments = {"batch", "in", "--output-dir", "out"};
    const Tests::Outcome first = Tests::runProgram(arguments, folder.path());
    EXPECT_EQ(first.exitCode, 0) << first.err.toStdString();
    const QByteArray shown = Tests::isSanitized ? "1,000" : "10,000";
    EXPECT_TRUE(first.out.contains(shown + " projects: " + shown + " done")) << first.out.toStdString();
    int found = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root / "out"))
        found += entry.path().extension() == ".json";
    EXPECT_EQ(found, count);
    const Tests::Outcome second = Tests::runProgram(arguments + QStringList{"--json"}, folder.path());
    EXPECT_TRUE(second.out.contains("\"kept\":" + QByteArray::number(count))) << second.out.toStdString();
}

} // namespace
