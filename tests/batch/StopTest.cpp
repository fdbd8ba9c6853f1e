// Signals to a batch, and what it shows of its work.

#include "support/Batch.h"
#include "support/PseudoTerminal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <nlohmann/json.hpp>

#include <sys/stat.h>

#include <csignal>

using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

namespace {

const QString state = QStringLiteral("out/adaptors-batch.sqlite");
const QStringList toOut = {"batch", "in", "--output-dir", "out"};

class StopTest : public Tests::BatchTest {
protected:
    void SetUp() override {
        put("in/a.xml", largeProject());
        for (const char* name : {"in/b.xml", "in/c.xml", "in/d.xml"})
            put(name, oldProject());
    }
};

TEST_F(StopTest, OneSignalLetsTheFilesInWorkEnd) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const QString folder = "out" + QString::number(signal);
        const QStringList arguments = {"batch", "in", "--output-dir", folder, "-j1"};
        Tests::BackgroundRun run(arguments, m_folder.path());
        const pid_t worker = run.aWorker();
        ASSERT_GT(worker, 0);
        kill(worker, SIGSTOP);
        run.signal(signal);
        ASSERT_TRUE(run.hasSaid("stopping"));
        kill(worker, SIGCONT);
        const Tests::Outcome outcome = run.outcome();
        EXPECT_EQ(outcome.exitCode, 128 + signal);
        EXPECT_TRUE(outcome.err.contains("stopped: 1 of 4 done; to go on, run the same command again"))
            << outcome.err.toStdString();
        EXPECT_THAT(names(folder), ElementsAre("a.v77.json"));
        EXPECT_THAT(column(folder + "/adaptors-batch.sqlite", "state"),
                    UnorderedElementsAre(Pair("a.xml", "done"), Pair("b.xml", "waiting"),
                                         Pair("c.xml", "waiting"), Pair("d.xml", "waiting")));
        EXPECT_EQ(this->run(arguments).exitCode, 0);
        EXPECT_EQ(names(folder).size(), 4U);
    }
}

TEST_F(StopTest, ASecondSignalEndsAtOnceAndLeavesNothingUnfinished) {
    Tests::BackgroundRun run(toOut + QStringList{"-j2"}, m_folder.path());
    std::vector<pid_t> workers;
    ASSERT_TRUE(Tests::waitUntil([&] {
        workers = run.workers();
        return workers.size() == 2 || !run.isRunning();
    }));
    for (const pid_t worker : workers)
        kill(worker, SIGSTOP);
    run.signal(SIGINT);
    ASSERT_TRUE(run.hasSaid("stopping"));
    run.signal(SIGINT);
    // Workers that don't react are ended all the same.
    EXPECT_EQ(run.wait(), 130);
    for (const auto& [name, bytes] : tree("out"))
        EXPECT_TRUE(name.ends_with(".json") && bytes.ends_with("}\n")) << name;
    EXPECT_EQ(query(state, "SELECT count(*) FROM files WHERE state = 'working'"), "0");
    EXPECT_EQ(this->run(toOut).exitCode, 0);
    EXPECT_EQ(names("out").size(), 4U);
}

TEST_F(StopTest, WorkersEndWithTheirBatch) {
    Tests::BackgroundRun run(toOut + QStringList{"-j1"}, m_folder.path());
    const pid_t worker = run.aWorker();
    ASSERT_GT(worker, 0);
    kill(worker, SIGSTOP);
    run.signal(SIGKILL);
    EXPECT_EQ(run.wait(), -2);
    EXPECT_TRUE(Tests::waitUntil([&] { return kill(worker, 0) != 0; }));
}

TEST_F(StopTest, ASignalThatIsIgnoredStopsNothing) {
    const auto before = std::signal(SIGHUP, SIG_IGN); // as for what is to outlive its terminal
    Tests::BackgroundRun run(toOut + QStringList{"-j1"}, m_folder.path());
    std::signal(SIGHUP, before);
    const pid_t worker = run.aWorker();
    ASSERT_GT(worker, 0);
    kill(worker, SIGSTOP);
    run.signal(SIGHUP);
    kill(worker, SIGCONT);
    EXPECT_EQ(run.wait(), 0);
    EXPECT_EQ(names("out").size(), 4U);
}

TEST_F(StopTest, ATerminalShowsABar) {
    const Tests::Screen screen = Tests::runInTerminal(toOut, m_folder.path());
    EXPECT_EQ(screen.exitCode, 0);
    EXPECT_TRUE(screen.text.contains("looking for projects")) << screen.text.toStdString();
    EXPECT_TRUE(screen.text.contains("[----------------------------------------] 0 of 4"))
        << screen.text.toStdString();
    // It goes away before the table comes.
    EXPECT_TRUE(screen.text.contains("\r\x1b[K4 projects: 4 done")) << screen.text.toStdString();
    for (const QByteArray& line : screen.text.split('\r'))
        EXPECT_LT(line.indexOf('\n') < 0 ? line.size() : 0, 80) << line.toStdString();
    const Tests::Screen quiet =
        Tests::runInTerminal({"batch", "in", "--output-dir", "quiet", "-q"}, m_folder.path());
    EXPECT_FALSE(quiet.text.contains("\x1b")) << quiet.text.toStdString();
}

TEST_F(StopTest, ElsewhereThereIsNoBar) {
    const Tests::Outcome outcome = run(toOut);
    EXPECT_EQ(outcome.err, "");
    EXPECT_TRUE(outcome.out.startsWith("4 projects: 4 done, 0 current already, 0 failed\n"))
        << outcome.out.toStdString();
}

TEST_F(StopTest, ABarCountsWhatFailed) {
    QDir(path("in")).removeRecursively();
    constexpr int many = 400; // their work takes longer than the bar waits
    for (int number = 0; number < many; ++number)
        put("in/" + QByteArray::number(number) + ".xml", oldProject().chopped(20));
    const Tests::Screen screen = Tests::runInTerminal(toOut + QStringList{"-j1"}, m_folder.path());
    EXPECT_EQ(screen.exitCode, 20);
    const QRegularExpression counts("([0-9]+) of 400, ([0-9]+) failed");
    const auto found = counts.match(QString::fromUtf8(screen.text));
    ASSERT_TRUE(found.hasMatch()) << screen.text.toStdString();
    EXPECT_EQ(found.captured(1), found.captured(2));
}

TEST_F(StopTest, ASignalDuringTheSearchLeavesTheStateAsItWas) {
    ASSERT_EQ(mkfifo(QFile::encodeName(path("list")).constData(), 0600), 0);
    Tests::BackgroundRun run({"batch", "--files0-from", "list", "--output-dir", "out"}, m_folder.path());
    QFile list(path("list"));
    ASSERT_TRUE(list.open(QIODevice::WriteOnly)); // waits until the run reads it
    list.write(QByteArray("in/b.xml\0", 9));
    run.signal(SIGINT);
    list.close();
    const Tests::Outcome outcome = run.outcome();
    EXPECT_EQ(outcome.exitCode, 130) << outcome.err.toStdString();
    EXPECT_TRUE(outcome.err.contains("to go on, run the same command again")) << outcome.err.toStdString();
    EXPECT_THAT(names("out"), ElementsAre());
    EXPECT_EQ(query(state, "SELECT count(*) FROM files"), "0");
}

TEST_F(StopTest, EventsOfARunThatIsStopped) {
    Tests::BackgroundRun run(toOut + QStringList{"-j1", "--progress", "json"}, m_folder.path());
    const pid_t worker = run.aWorker();
    ASSERT_GT(worker, 0);
    kill(worker, SIGSTOP);
    EXPECT_TRUE(run.hasSaid("\"event\":\"progress\"")); // each second
    run.signal(SIGINT);
    EXPECT_TRUE(run.hasSaid("\"event\":\"stopping\""));
    kill(worker, SIGCONT);
    const Tests::Outcome outcome = run.outcome();
    EXPECT_EQ(outcome.exitCode, 130);
    for (const QByteArray& line : outcome.err.trimmed().split('\n')) {
        const json event = json::parse(line.toStdString(), nullptr, false);
        if (event.is_object() && event["event"] != "file") {
            EXPECT_EQ(event["total"], 4) << line.toStdString();
        }
    }
    EXPECT_FALSE(outcome.err.contains("Ctrl-C")) << outcome.err.toStdString();
}

TEST_F(StopTest, EventsForPrograms) {
    put("in/cut.xml", oldProject().chopped(20));
    const Tests::Outcome outcome = run(toOut + QStringList{"--progress=json"});
    std::map<std::string, int> events;
    json last;
    for (const QByteArray& line : outcome.err.trimmed().split('\n')) {
        last = json::parse(line.toStdString());
        ++events[last["event"]];
        if (last["event"] == "file" && last["state"] == "failed") {
            EXPECT_EQ(last["kind"], "broken-xml");
        }
    }
    EXPECT_EQ(events["begin"], 1);
    EXPECT_EQ(events["file"], 5);
    EXPECT_EQ(events["end"], 1);
    EXPECT_EQ(last["event"], "end");
    EXPECT_EQ(last["migrated"], 4);
    EXPECT_EQ(last["failed"], 1);
    EXPECT_EQ(last["total"], 5);
}

} // namespace
