// No project is lost by a killed process, a full disk, or other processes that change the files.

#include "Reader/Error.h"
#include "Reader/Files.h"
#include "support/ProgramTest.h"
#include "support/Sanitizers.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QProcess>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <climits>
#include <iostream>
#include <memory>
#include <random>
#include <thread>
#include <vector>

using Reader::ErrorKind;
using Reader::FileInPlace;
using Tests::archive;
using Tests::jsonProject;
using Tests::migratedName;
using Tests::Outcome;
using Tests::sample;

namespace {

class SafetyTest : public Tests::ProgramTest {
protected:
    void expectWriteError(const Outcome& outcome, const QByteArray& file, const QByteArray& remedy) const {
        EXPECT_EQ(outcome.exitCode, 15) << outcome.err.toStdString();
        EXPECT_TRUE(outcome.err.contains(file + ": ")) << outcome.err.toStdString();
        EXPECT_TRUE(outcome.err.contains(remedy)) << outcome.err.toStdString();
    }
};

/// A project in JSON that becomes larger by the migration.
QByteArray growing() {
    QByteArray clips;
    for (int id = 10; id < 210; ++id)
        clips += (clips.isEmpty() ? "" : ",") +
                 QByteArray(R"({"@meta":{"class_name":"Timeline::Clip","object_id":)") +
                 QByteArray::number(id) + "}}";
    return R"({"version":"1.0","schemaVersion":66,"data":{"@meta":{"class_name":"Project::Content","object_id":2},"clips":[)" +
           clips + "]}}";
}

// Killed

using Milliseconds = std::chrono::duration<double, std::milli>;

/// Starts an in-place migration in a folder and kills it after a delay. Returns whether it was still running.
/// With `onWrite` the delay starts when the first new file appears.
bool killMidway(const QString& folder, bool onWrite, Milliseconds wait) {
    QProcess process;
    process.setProcessEnvironment(Tests::withoutCounters());
    process.setWorkingDirectory(folder);
    process.start(QString::fromStdString(Tests::program().string()), {"migrate", "film.xml", "--in-place"});
    process.waitForStarted();
    while (onWrite && QDir(folder).entryList(QDir::Files).size() < 2 && !process.waitForFinished(0))
        std::this_thread::yield();
    std::this_thread::sleep_for(wait);
    process.kill();
    process.waitForFinished(-1);
    return process.exitStatus() == QProcess::CrashExit;
}

TEST_F(SafetyTest, AKilledProcessLeavesTheOldFileOrTheNewOne) {
    const QByteArray old = archive("<RootObject type='Note' objectId='6'><text type='String' value='" +
                                       QByteArray(2000000, 'x') + "'/></RootObject>",
                                   " schemaVersion='60'")
                               .replace("<clips ", "<note type='ObjectRef' value='6'/><clips ");
    write("film.xml", old);
    QElapsedTimer timer;
    timer.start();
    ASSERT_EQ(run({"migrate", "film.xml", "--in-place"}).exitCode, 0);
    const auto whole = static_cast<double>(timer.elapsed());
    const QByteArray migrated = read("film.xml");
    ASSERT_TRUE(migrated.startsWith('{') && migrated.size() > 2000000);

    const unsigned int seed = std::random_device()();
    std::cout << "seed " << seed << ", a run takes " << whole << " ms\n";
    std::minstd_rand random(seed);
    int killed = 0;
    int kept = 0;
    for (int number = 0; number < 50; ++number) {
        const QString folder = path(QString::number(number));
        ASSERT_TRUE(QDir().mkpath(folder));
        write(QString::number(number) + "/film.xml", old);
        const bool onWrite = number % 2 == 1;
        std::uniform_real_distribution<double> wait(0, onWrite ? whole / 20 : whole);
        killed += killMidway(folder, onWrite, Milliseconds(wait(random)));
        const QByteArray now = read(QString::number(number) + "/film.xml");
        kept += now == old;
        ASSERT_TRUE(now == old || now == migrated) << "kill " << number << ", seed " << seed;
        if (now == migrated) { // and the backup has the complete old content
            EXPECT_EQ(read(QString::number(number) + "/film.xml.bak"), old);
        }
    }
    EXPECT_GE(killed, 5);
    EXPECT_GE(kept, 5);
}

// No space

TEST_F(SafetyTest, AFullDiskIsAnErrorAndChangesNothing) {
    write("film.xml", sample("holiday-v27.xml"));
    const QString small = "ulimit -f 8; "; // 4096 bytes
    expectWriteError(runAfter(small, {"migrate", "film.xml"}), migratedName("film").toUtf8(),
                     "free some space");
    expectWriteError(runAfter(small, {"migrate", "film.xml", "-o", "old.json", "--force"}), "old.json",
                     "free some space");
    expectWriteError(runAfter(small, {"migrate", "film.xml", "--in-place"}), "film.xml.bak",
                     "free some space");
    expectWriteError(runAfter(small, {"run", "V28_ClipLabelAdaptor", "film.xml", "-o", "a.xml"}), "a.xml",
                     "free some space");
    EXPECT_EQ(files(), QStringList{"film.xml"});
    EXPECT_EQ(read("film.xml"), sample("holiday-v27.xml"));
}

TEST_F(SafetyTest, AResultThatDoesNotFitLeavesNoBackup) {
    write("film.json", growing());
    const auto blocks = growing().size() / 512 + 2;
    expectWriteError(
        runAfter("ulimit -f " + QString::number(blocks) + "; ", {"migrate", "film.json", "--in-place"}),
        "film.json", "free some space");
    EXPECT_EQ(files(), QStringList{"film.json"});
    EXPECT_EQ(read("film.json"), growing());
}

TEST_F(SafetyTest, AFullStandardOutputIsAnError) {
    write("film.xml", archive());
    const Outcome outcome = runAfter("exec >/dev/full; ", {"migrate", "film.xml", "-o", "-"});
    expectWriteError(outcome, "standard output", "");
}

// No permission

TEST_F(SafetyTest, AReadOnlyFolderIsAnErrorAndChangesNothing) {
    write("film.xml", archive());
    ASSERT_EQ(chmod(QFile::encodeName(m_folder.path()).constData(), 0555), 0);
    ASSERT_EQ(chmod(QFile::encodeName(path("film.xml")).constData(), 0444), 0);
    // Root may write everywhere: then the program runs as another user.
    const QString asOther =
        geteuid() == 0 ? "set -- setpriv --reuid=65534 --regid=65534 --clear-groups \"$@\"; " : "";
    if (runAfter(asOther, {"--version"}).exitCode != 0)
        GTEST_SKIP() << "the program can't be run as another user here";
    expectWriteError(runAfter(asOther, {"migrate", "film.xml"}), migratedName("film").toUtf8(),
                     "permissions");
    expectWriteError(runAfter(asOther, {"migrate", "film.xml", "--in-place"}), "film.xml.bak", "permissions");
    EXPECT_EQ(files(), QStringList{"film.xml"});
    EXPECT_EQ(read("film.xml"), archive());

    // A read-only file in a writable folder.
    ASSERT_EQ(chmod(QFile::encodeName(m_folder.path()).constData(), 0777), 0);
    expectWriteError(runAfter(asOther, {"migrate", "film.xml", "--in-place"}), "film.xml", "permissions");
    EXPECT_EQ(files(), QStringList{"film.xml"});
    EXPECT_EQ(read("film.xml"), archive());

    ASSERT_EQ(chmod(QFile::encodeName(path("film.xml")).constData(), 0), 0);
    EXPECT_EQ(runAfter(asOther, {"migrate", "film.xml"}).exitCode, 3);
}

// Missing files

TEST_F(SafetyTest, AMissingOutputFolderIsNamedAndNotCreated) {
    write("film.xml", archive());
    expectWriteError(run({"migrate", "film.xml", "-o", "new/film.json"}), "new/film.json", "make its folder");
    expectWriteError(run({"migrate", "film.xml", "-o", "new/film.json", "--force"}), "new/film.json",
                     "make its folder");
    EXPECT_FALSE(exists("new"));
    expectWriteError(run({"migrate", "film.xml", "--bundle", "new/bundle"}), "new/bundle",
                     "the one above it");
    write("file", "");
    expectWriteError(run({"migrate", "film.xml", "--bundle", "file"}), "file", "can't make this folder");
}

TEST_F(SafetyTest, AVanishedInputIsNamed) {
    for (const QStringList& arguments :
         {QStringList{"migrate", "film.xml"}, QStringList{"migrate", "film.xml", "--in-place"},
          QStringList{"info", "film.xml"}, QStringList{"verify", "film.xml"}}) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, 3);
        EXPECT_TRUE(outcome.err.contains("film.xml: No such file")) << outcome.err.toStdString();
    }
    EXPECT_EQ(files(), QStringList());
}

// Several processes at once

TEST_F(SafetyTest, ASecondRunOnAFileIsRefused) {
    write("film.xml", archive());
    {
        const FileInPlace first(path("film.xml"));
        expectWriteError(run({"migrate", "film.xml", "--in-place"}), "film.xml", "another run");
        EXPECT_EQ(files(), QStringList{"film.xml"});
        EXPECT_EQ(read("film.xml"), archive());
    }
    EXPECT_EQ(run({"migrate", "film.xml", "--in-place"}).exitCode, 0);
}

TEST_F(SafetyTest, ConcurrentRunsLoseNothing) {
    write("film.xml", archive());
    ASSERT_EQ(run({"migrate", "film.xml", "-o", "new.json"}).exitCode, 0);
    std::vector<std::unique_ptr<QProcess>> processes;
    for (int number = 0; number < 6; ++number) {
        processes.push_back(std::make_unique<QProcess>());
        processes.back()->setWorkingDirectory(m_folder.path());
        processes.back()->start(QString::fromStdString(Tests::program().string()),
                                {"migrate", "film.xml", "--in-place"});
    }
    int done = 0;
    for (const auto& process : processes) {
        ASSERT_TRUE(process->waitForFinished(120000));
        EXPECT_EQ(process->exitStatus(), QProcess::NormalExit);
        const QByteArray said = process->readAllStandardError();
        done += process->exitCode() == 0 && !said.contains("nothing to do");
        EXPECT_TRUE(process->exitCode() == 0 || process->exitCode() == 15) << said.toStdString();
    }
    EXPECT_GE(done, 1);
    EXPECT_EQ(read("film.xml"), read("new.json"));
    EXPECT_EQ(read("film.xml.bak"), archive());
    EXPECT_EQ(files().size(), 2 + done); // a backup of each run that wrote, and nothing else
    EXPECT_EQ(files().filter("tmp"), QStringList());
}

// Too much input

/// A shell command that limits the memory of the following commands to that many bytes.
QString withMemory(qint64 bytes) {
    // A sanitizer reserves unlimited address space. It has a limit of its own for used memory, which must be
    // several times higher.
    if (Tests::isSanitized)
        return QStringLiteral("export ASAN_OPTIONS=quarantine_size_mb=1:hard_rss_limit_mb=%1; ")
            .arg(bytes * 5 >> 20);
    return QStringLiteral("ulimit -d %1; ").arg(bytes >> 10);
}

QByteArray inTimeline(const QByteArray& content, const QByteArray& objects = {}) {
    return "<Archive schemaVersion='62'><RootRef type='ObjectRef' value='2'/>"
           "<RootObject type='Timeline::Object' objectId='2'>" +
           content + "</RootObject>" + objects + "</Archive>";
}

QByteArray inProject(const QByteArray& content) {
    return jsonProject(R"({"@meta":{"class_name":"Note","object_id":2},"a":)" + content + "}");
}

/// The bytes of a hostile document. A sanitizer sets no bound for the memory and takes long.
constexpr int hostileSize = Tests::isSanitized ? 100000 : 1000000;

/// A document of about so many bytes that repeats the same part.
QByteArray many(const QByteArray& part) {
    return part.repeated(hostileSize / part.size());
}

struct Hostile {
    const char* name;
    QByteArray bytes;
};

std::vector<Hostile> hostileDocuments() {
    return {
        {"tiny elements", inTimeline(many("<a/>"))},
        {"tiny texts", inTimeline(many("<a>b</a>"))},
        {"long attribute", inTimeline("<a type='String' value='" + many("x") + "'/>")},
        {"many attributes", inTimeline(many("<a b='' c='' d='' e=''/>"))},
        {"deep elements",
         inTimeline(many(QByteArray("<a>").repeated(300) + QByteArray("</a>").repeated(300)))},
        {"items without index", inTimeline("<a type='Array'>" + many("<Item/>") + "</a>")},
        {"repeated links",
         inTimeline("<a type='Array'>" + many("<Item><Data type='ObjectRef' value='2'/></Item>") + "</a>")},
        {"root objects of one id", inTimeline("", many("<RootObject objectId='3'/>"))},
        {"empty arrays", inProject('[' + many("[],") + "0]")},
        {"empty objects", inProject('[' + many("{},") + "0]")},
        {"objects without ids", inProject('[' + many(R"({"@meta":{}},)") + "0]")},
        {"links to nothing", inProject('[' + many(R"({"@meta_reference":9},)") + "0]")},
        {"deep arrays",
         inProject(QByteArray("[").repeated(hostileSize / 2) + QByteArray("]").repeated(hostileSize / 2))},
        {"long text", inProject('"' + many("x") + '"')},
    };
}

TEST_F(SafetyTest, ReadingTakesMemoryInProportionToTheFile) {
    for (const Hostile& hostile : hostileDocuments()) {
        write("film", hostile.bytes);
        const auto boundOf = [&](qint64 times) {
            return 64 * 1024 * 1024 + times * qint64(hostile.bytes.size());
        };
        const qint64 bound = boundOf(250);
        // It tries repairs, which give each root object a predeclaration.
        const Outcome info = runAfter(withMemory(boundOf(350)), {"info", "film"});
        EXPECT_EQ(info.exitCode, 0) << hostile.name << ": " << info.err.toStdString();
        const Outcome verify = runAfter(withMemory(bound), {"verify", "film"});
        EXPECT_TRUE(verify.exitCode == 0 || verify.exitCode == 17)
            << hostile.name << ": " << verify.err.toStdString();
        const Outcome newest = runAfter(withMemory(bound), {"migrate", "film", "-o", "out", "--force"});
        EXPECT_EQ(newest.exitCode, 0) << hostile.name << ": " << newest.err.toStdString();
    }
}

TEST_F(SafetyTest, MemoryIsLimitedByTheSizeOfTheDocument) {
    if (Tests::isSanitized)
        GTEST_SKIP() << "a sanitizer's own memory would count";
    // Each of these gets six tracks, each with a predeclaration.
    const QByteArray timelines =
        "<Archive schemaVersion='26'><RootRef type='ObjectRef' value='2'/>"
        "<RootObject type='Predeclarator' objectId='1'><predeclarations type='Array' size='0'/></RootObject>"
        "<RootObject type='Timeline::Object' objectId='2'/>" +
        many("<RootObject type='Timeline::Object'/>") + "</Archive>";
    write("film.xml", timelines);
    expectFailure({"migrate", "film.xml", "--in-place"}, 18, "more memory");
    EXPECT_EQ(files(), QStringList{"film.xml"});
    EXPECT_EQ(read("film.xml"), timelines);
    // One track, listed many times, with a level for each of many clips: each level is listed as many times.
    QByteArray levels =
        R"({"version":"1.0","schemaVersion":76,"data":{"@meta":{"class_name":"Timeline::Object","object_id":2},
        "tracks":[{"@meta":{"class_name":"Timeline::Track","object_id":3},"type":1,"used":true,"timeline":{"@meta_reference":2}})";
    levels += QByteArray(R"(,{"@meta_reference":3})").repeated(20000) + R"(],"clips":[],"x":[null)";
    for (int level = 1; level < 5000; ++level)
        levels += R"(,{"@meta":{"class_name":"Timeline::ClipTiming","object_id":)" +
                  QByteArray::number(level + 10) + R"(},"track":{"@meta_reference":3},"trackLevel":)" +
                  QByteArray::number(level) + "}";
    levels += "]}}";
    write("film.xml", levels);
    expectFailure({"migrate", "film.xml", "--in-place"}, 18, "more memory");
    EXPECT_EQ(files(), QStringList{"film.xml"});
}

TEST_F(SafetyTest, AnEndlessInputIsRefused) {
    if (Tests::isSanitized)
        GTEST_SKIP() << "takes a sanitizer long";
    expectFailure({"info", "/dev/zero"}, 3, "1 GiB");
}

class FilesTest : public SafetyTest {
protected:
    template <class Call>
    static ErrorKind kindOf(Call call) {
        try {
            call();
        } catch (const Reader::Error& error) {
            return error.kind();
        }
        return ErrorKind::Empty;
    }
};

TEST_F(FilesTest, ConcurrentChangesAreNotOverwritten) {
    write("film.xml", "old");
    FileInPlace file(path("film.xml"));
    EXPECT_EQ(file.bytes(), "old");
    write("film.xml", "saved by the editor");
    EXPECT_EQ(kindOf([&] { file.replace("migrated"); }), ErrorKind::ChangedMeanwhile);
    EXPECT_EQ(read("film.xml"), "saved by the editor");
    EXPECT_EQ(files(), QStringList{"film.xml"});
    QFile::remove(path("film.xml"));
    EXPECT_EQ(kindOf([&] { file.replace("migrated"); }), ErrorKind::ChangedMeanwhile);
    EXPECT_EQ(files(), QStringList());
}

TEST_F(FilesTest, ReplacingKeepsABackup) {
    write("film.xml", "old");
    write("film.xml.bak", "earlier");
    EXPECT_EQ(FileInPlace(path("film.xml")).replace("migrated").backup, path("film.xml.bak2"));
    EXPECT_EQ(read("film.xml"), "migrated");
    EXPECT_EQ(read("film.xml.bak"), "earlier");
    EXPECT_EQ(read("film.xml.bak2"), "old");
    EXPECT_EQ(files().size(), 3);
}

TEST_F(FilesTest, OnlyRegularFilesAreReplaced) {
    EXPECT_EQ(kindOf([] { FileInPlace(QStringLiteral("/dev/null")); }), ErrorKind::NoRegularFile);
    EXPECT_EQ(kindOf([&] { FileInPlace(m_folder.path()); }), ErrorKind::NoRegularFile);
}

TEST_F(FilesTest, AFileThatAppearsMeanwhileIsNotReplaced) {
    write("film.json", "precious");
    EXPECT_EQ(kindOf([&] { Reader::writeFile(path("film.json"), "new", {Reader::Existing::Refuse}); }),
              ErrorKind::OutputExists);
    EXPECT_EQ(read("film.json"), "precious");
    EXPECT_EQ(files(), QStringList{"film.json"});
    Reader::writeFile(path("film.json"), "new");
    EXPECT_EQ(read("film.json"), "new");
    Reader::writeFile(path("other.json"), "new", {Reader::Existing::Refuse});
    EXPECT_EQ(read("other.json"), "new");
    EXPECT_EQ(files(), (QStringList{"film.json", "other.json"}));
    // A link to a missing file exists as well.
    ASSERT_EQ(symlink("nowhere", QFile::encodeName(path("link.json")).constData()), 0);
    EXPECT_EQ(kindOf([&] { Reader::writeFile(path("link.json"), "new", {Reader::Existing::Refuse}); }),
              ErrorKind::OutputExists);
}

TEST_F(FilesTest, TheTargetOfALinkIsReplaced) {
    write("film.json", "old");
    ASSERT_EQ(symlink("film.json", QFile::encodeName(path("first.json")).constData()), 0);
    ASSERT_EQ(symlink("first.json", QFile::encodeName(path("second.json")).constData()), 0);
    Reader::writeFile(path("second.json"), "new");
    EXPECT_TRUE(QFileInfo(path("first.json")).isSymLink());
    EXPECT_TRUE(QFileInfo(path("second.json")).isSymLink());
    EXPECT_EQ(read("film.json"), "new");
    // Also if it leads to a file that does not exist yet.
    ASSERT_EQ(symlink("later.json", QFile::encodeName(path("third.json")).constData()), 0);
    Reader::writeFile(path("third.json"), "newer");
    EXPECT_TRUE(QFileInfo(path("third.json")).isSymLink());
    EXPECT_EQ(read("later.json"), "newer");
}

TEST_F(FilesTest, APipeIsWrittenDirectly) {
    const QByteArray pipe = QFile::encodeName(path("pipe"));
    ASSERT_EQ(mkfifo(pipe.constData(), 0600), 0);
    const int end = open(pipe.constData(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(end, 0);
    Reader::writeFile(path("pipe"), "migrated", {Reader::Existing::Refuse});
    std::array<char, 64> bytes = {};
    EXPECT_EQ(::read(end, bytes.data(), bytes.size()), 8);
    EXPECT_STREQ(bytes.data(), "migrated");
    close(end);
    struct stat status = {};
    ASSERT_EQ(lstat(pipe.constData(), &status), 0);
    EXPECT_TRUE(S_ISFIFO(status.st_mode));
}

TEST_F(FilesTest, ATemporaryFileOfAnotherRunIsKept) {
    const QString left = QStringLiteral("film.json.%1-1.tmp").arg(getpid());
    write(left, "left over");
    Reader::writeFile(path("film.json"), "new");
    EXPECT_EQ(read("film.json"), "new");
    EXPECT_EQ(read(left), "left over");
    EXPECT_EQ(files().size(), 2);
}

TEST_F(FilesTest, WithoutABackupNothingIsReplaced) {
    // Just short enough for the temporary file of the result, and too long for that of the backup.
    const int ending = QStringLiteral(".%1-1.tmp").arg(getpid()).size();
    const QString longest(NAME_MAX - ending, QLatin1Char('n'));
    write(longest, "old");
    FileInPlace file(path(longest));
    EXPECT_EQ(kindOf([&] { file.replace("migrated"); }), ErrorKind::Unwritable);
    EXPECT_EQ(read(longest), "old");
    EXPECT_EQ(files(), QStringList{longest});
    Reader::writeFile(path(longest), "new");
    EXPECT_EQ(read(longest), "new");
}

TEST_F(FilesTest, AFileThatOpensAndCannotBeReadIsAnError) {
    // The first page of a process can't be read.
    EXPECT_EQ(kindOf([] { Reader::readFile(QStringLiteral("/proc/self/mem")); }), ErrorKind::Unreadable);
}

} // namespace
