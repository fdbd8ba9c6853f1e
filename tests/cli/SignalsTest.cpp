// A signal that ends the program leaves nothing unfinished behind.

#include "support/ProgramTest.h"

#include <gtest/gtest.h>

#include <QDirIterator>
#include <QElapsedTimer>
#include <QProcess>

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <iostream>
#include <random>
#include <thread>

using Tests::archive;
using Tests::migratedName;
using Tests::Outcome;

namespace {

constexpr std::array<int, 3> endingSignals = {SIGINT, SIGTERM, SIGHUP};

using Milliseconds = std::chrono::duration<double, std::milli>;

class SignalsTest : public Tests::ProgramTest {
protected:
    /// Starts the program, sends it a signal after a while, and gives its exit code, -2 for one that did not exit by
    /// itself. With `onWrite` the while begins when the first new file or folder appears.
    int interrupt(const QStringList& arguments, int signal, bool onWrite, Milliseconds wait) const {
        QProcess process;
        process.setProcessEnvironment(Tests::withoutCounters());
        process.setWorkingDirectory(m_folder.path());
        const int before = everything().size();
        process.start(QString::fromStdString(Tests::program().string()), arguments);
        process.waitForStarted();
        while (onWrite && everything().size() == before && !process.waitForFinished(0) &&
               process.state() != QProcess::NotRunning)
            std::this_thread::yield();
        std::this_thread::sleep_for(wait);
        if (const auto id = static_cast<pid_t>(process.processId()); id > 0) // 0 would be this process group
            ::kill(id, signal);
        process.waitForFinished(-1);
        return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2;
    }
    /// Files and folders, also in folders.
    QStringList everything() const {
        QStringList names;
        QDirIterator it(m_folder.path(), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                        QDirIterator::Subdirectories);
        while (it.hasNext())
            names += QDir(m_folder.path()).relativeFilePath(it.next());
        names.sort();
        return names;
    }
    void empty() const {
        for (const QString& name : QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot)) {
            QFile::remove(path(name));
            QDir(path(name)).removeRecursively();
        }
    }
};

/// A project of much text, so that migrating and writing it take a while.
QByteArray large() {
    return archive("<RootObject type='Note' objectId='6'><text type='String' value='" +
                       QByteArray(2000000, 'x') + "'/></RootObject>",
                   " schemaVersion='60'")
        .replace("<clips ", "<note type='ObjectRef' value='6'/><clips ");
}

/// A project with many titles, whose texts become side files.
QByteArray withTitles() {
    QByteArray items;
    for (int id = 10; id < 60; ++id)
        items += (items.isEmpty() ? "" : ",") +
                 QByteArray(R"({"@meta":{"class_name":"Overlay::Item","object_id":)") +
                 QByteArray::number(id) + R"(},"encodedText":")" + QByteArray("<svg/>").toBase64() + "\"}";
    return Tests::jsonProject(R"({"@meta":{"class_name":"Project::Content","object_id":2},"items":[)" +
                              items + "]}");
}

TEST_F(SignalsTest, TwoHundredInterruptionsLeaveTheOldFileOrTheNewOneAndNothingElse) {
    const QByteArray old = large();
    write("film.xml", old);
    QElapsedTimer timer;
    timer.start();
    ASSERT_EQ(run({"migrate", "film.xml", "--in-place"}).exitCode, 0);
    const auto whole = static_cast<double>(timer.elapsed());
    const QByteArray migrated = read("film.xml");
    const unsigned int seed = std::random_device()();
    std::cout << "seed " << seed << ", a run takes " << whole << " ms\n";
    std::minstd_rand random(seed);
    int interrupted = 0;
    for (int number = 0; number < 200; ++number) {
        empty();
        write("film.xml", old);
        const int signal = endingSignals.at(static_cast<std::size_t>(number) % endingSignals.size());
        const bool onWrite = number % 2 == 1;
        std::uniform_real_distribution<double> wait(0, onWrite ? whole / 10 : whole);
        // The program sets its handlers up at its start: a signal before that ends it the usual way, with nothing made.
        const int code =
            interrupt({"migrate", "film.xml", "--in-place"}, signal, onWrite, Milliseconds(wait(random)));
        interrupted += code == 128 + signal;
        EXPECT_TRUE(code == 0 || code == 128 + signal || (code == -2 && !onWrite)) << code;
        if (everything() == QStringList{"film.xml"}) {
            ASSERT_EQ(read("film.xml"), old) << "interruption " << number << ", seed " << seed;
        } else {
            ASSERT_EQ(everything(), (QStringList{"film.xml", "film.xml.bak"})) << "seed " << seed;
            ASSERT_EQ(read("film.xml"), migrated) << "interruption " << number << ", seed " << seed;
            ASSERT_EQ(read("film.xml.bak"), old);
        }
    }
    EXPECT_GE(interrupted, 20);
}

TEST_F(SignalsTest, ABundleIsWholeOrNotThere) {
    write("film.json", withTitles());
    QElapsedTimer timer;
    timer.start();
    ASSERT_EQ(run({"migrate", "film.json", "--bundle", "new"}).exitCode, 0);
    const auto whole = static_cast<double>(timer.elapsed());
    const QStringList complete = everything();
    ASSERT_EQ(complete.size(), 53); // the project, the folder, its project and 50 side files
    const unsigned int seed = std::random_device()();
    std::minstd_rand random(seed);
    int interrupted = 0;
    for (int number = 0; number < 40; ++number) {
        QDir(path("new")).removeRecursively();
        const bool folderExists = number % 4 == 0;
        if (folderExists) {
            ASSERT_TRUE(QDir(m_folder.path()).mkdir("new"));
        }
        std::uniform_real_distribution<double> wait(0, whole / 2);
        const int signal = endingSignals.at(static_cast<std::size_t>(number) % endingSignals.size());
        const int code =
            interrupt({"migrate", "film.json", "--bundle", "new"}, signal, true, Milliseconds(wait(random)));
        interrupted += code == 128 + signal;
        const QStringList left = everything();
        const QStringList nothing = folderExists ? QStringList{"film.json", "new"} : QStringList{"film.json"};
        ASSERT_TRUE(left == nothing || left == complete)
            << left.join(' ').toStdString() << ", interruption " << number << ", seed " << seed;
    }
    EXPECT_GE(interrupted, 5);
}

TEST_F(SignalsTest, ATraceLeavesOnlyWholeDocuments) {
    write("film.xml", Tests::sample("holiday-v27.xml"));
    ASSERT_EQ(run({"trace", "film.xml", "--output-dir", "whole"}).exitCode, 0);
    std::minstd_rand random(std::random_device{}());
    int interrupted = 0;
    for (int number = 0; number < 30; ++number) {
        QDir(path("steps")).removeRecursively();
        std::uniform_real_distribution<double> wait(0, 40);
        interrupted += interrupt({"trace", "film.xml", "--output-dir", "steps"}, SIGINT, true,
                                 Milliseconds(wait(random))) == 128 + SIGINT;
        const QStringList names = QDir(path("steps")).entryList(QDir::Files);
        EXPECT_EQ(QFileInfo::exists(path("steps")), !names.isEmpty());
        for (const QString& name : names)
            ASSERT_EQ(read("steps/" + name), read("whole/" + name)) << name.toStdString();
    }
    EXPECT_GE(interrupted, 5);
}

TEST_F(SignalsTest, ABundleThatCannotBeWrittenLeavesNothing) {
    write("film.json", withTitles());
    // The side files are small enough, the project is not.
    const Outcome outcome = runAfter("ulimit -f 2; ", {"migrate", "film.json", "--bundle", "new"});
    EXPECT_EQ(outcome.exitCode, 15) << outcome.err.toStdString();
    EXPECT_EQ(everything(), QStringList{"film.json"});
}

TEST_F(SignalsTest, IgnoredSignalsStayIgnored) {
    write("film.xml", archive());
    ASSERT_EQ(mkfifo(QFile::encodeName(path("pipe")).constData(), 0600), 0);
    // The program waits for a reader of the pipe while the signals come.
    const Outcome outcome = Tests::runCommand("/bin/sh",
                                              {"-c",
                                               "trap '' HUP; \"$0\" migrate film.xml -o pipe 2>log & sleep "
                                               "0.3; kill -HUP $!; sleep 0.1; cat pipe >out; "
                                               "wait $!",
                                               QString::fromStdString(Tests::program().string())},
                                              m_folder.path());
    EXPECT_EQ(outcome.exitCode, 0) << read("log").toStdString();
    EXPECT_TRUE(read("out").startsWith('{'));
}

TEST_F(SignalsTest, AProgramThatWaitsForAPipeEndsToo) {
    write("film.xml", archive());
    ASSERT_EQ(mkfifo(QFile::encodeName(path("pipe")).constData(), 0600), 0);
    for (const int signal : endingSignals)
        EXPECT_EQ(interrupt({"migrate", "film.xml", "-o", "pipe"}, signal, false, Milliseconds(500)),
                  128 + signal);
}

TEST_F(SignalsTest, AReaderThatHasSeenEnoughEndsTheProgramQuietly) {
    write("film.xml", Tests::sample("holiday-v45.xml")); // its result does not fit into the buffer of a pipe
    const Outcome outcome =
        Tests::runCommand("/bin/bash",
                          {"-c", "\"$0\" migrate -q film.xml -o - --to 62 | head -c 1; echo ${PIPESTATUS[0]}",
                           QString::fromStdString(Tests::program().string())},
                          m_folder.path());
    EXPECT_EQ(outcome.out, "<141\n");
    EXPECT_EQ(outcome.err, "");
}

} // namespace
