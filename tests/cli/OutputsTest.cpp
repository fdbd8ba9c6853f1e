// Where results go: folders, devices, pipes, standard output, and names that are taken by something else.

#include "support/ProgramTest.h"

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <functional>

using Tests::archive;
using Tests::migratedName;
using Tests::Outcome;

namespace {

class OutputsTest : public Tests::ProgramTest {
protected:
    void SetUp() override { write("film.xml", archive()); }

    QByteArray bytesOf(const QString& name) const { return QFile::encodeName(path(name)); }
    void makeFolder(const QString& name) const { ASSERT_TRUE(QDir(m_folder.path()).mkpath(name)); }
    void expectSuccess(const QStringList& arguments) const {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    }
};

// Folders

TEST_F(OutputsTest, AFolderTakesTheResultUnderItsOwnName) {
    makeFolder("out");
    expectSuccess({"migrate", "film.xml", "-o", "out"});
    EXPECT_TRUE(read("out/" + migratedName("film")).startsWith('{'));
    expectFailure({"migrate", "film.xml", "-o", "out/"}, 16, migratedName("film").toUtf8());
    expectSuccess({"migrate", "film.xml", "-o", "out/", "--force"});
    expectSuccess({"migrate", "film.xml", "-o", "."});
    EXPECT_TRUE(exists(migratedName("film")));
    ASSERT_EQ(symlink("out", bytesOf("link").constData()), 0);
    expectSuccess({"migrate", "film.xml", "--to", "62", "-o", "link"});
    EXPECT_TRUE(read("out/film.v62.xml").startsWith('<'));
    EXPECT_EQ(run({"migrate", "-", "-o", "out"}, archive()).exitCode, 0);
    EXPECT_TRUE(exists("out/" + migratedName("project")));
    expectSuccess({"run", "V28_ClipLabelAdaptor", "film.xml", "-o", "out"});
    EXPECT_TRUE(read("out/film.xml").contains("<labels"));
    expectFailure({"run", "V28_ClipLabelAdaptor", "film.xml", "-o", "."}, 16, "film.xml");
    EXPECT_EQ(run({"run", "V28_ClipLabelAdaptor", "-", "-o", "out"}, archive()).exitCode, 0);
    EXPECT_TRUE(exists("out/project.xml"));
}

TEST_F(OutputsTest, AFolderThatIsMissingIsAnError) {
    expectFailure({"migrate", "film.xml", "-o", "newname/"}, 15,
                  "newname/: No such file or directory; make its");
    expectFailure({"run", "V28_ClipLabelAdaptor", "film.xml", "-o", "newname/"}, 15, "make its folder");
    expectFailure({"migrate", "film.xml", "-o", "film.xml/"}, 15, "film.xml/");
    expectFailure({"migrate", "missing/film.xml"}, 3, "missing/film.xml");
    EXPECT_EQ(files(), QStringList{"film.xml"});
}

// Streams

TEST_F(OutputsTest, DevicesAndPipesAreWrittenIntoWithoutForce) {
    expectSuccess({"migrate", "film.xml", "-o", "/dev/null"});
    struct stat status = {};
    ASSERT_EQ(stat("/dev/null", &status), 0);
    EXPECT_TRUE(S_ISCHR(status.st_mode));
    expectFailure({"migrate", "film.xml", "-o", "/dev/full"}, 15, "/dev/full: No space left");
    // A device of this folder, which a rename could replace.
    if (mknod(bytesOf("null").constData(), S_IFCHR | 0666, makedev(1, 3)) == 0) {
        expectSuccess({"migrate", "film.xml", "-o", "null"});
        expectSuccess({"migrate", "film.xml", "-o", "null", "--force"});
        ASSERT_EQ(lstat(bytesOf("null").constData(), &status), 0);
        EXPECT_TRUE(S_ISCHR(status.st_mode));
    }
    ASSERT_EQ(mkfifo(bytesOf("pipe").constData(), 0600), 0);
    const Outcome piped = runAfter("cat pipe > out & ", {"migrate", "film.xml", "-o", "pipe"});
    EXPECT_EQ(piped.exitCode, 0) << piped.err.toStdString();
    ASSERT_EQ(lstat(bytesOf("pipe").constData(), &status), 0);
    EXPECT_TRUE(S_ISFIFO(status.st_mode));
}

TEST_F(OutputsTest, StandardOutputHasNames) {
    const QByteArray result = run({"migrate", "film.xml", "-o", "-"}).out;
    ASSERT_TRUE(result.startsWith('{'));
    for (const char* name : {"/dev/stdout", "/dev/fd/1", "/proc/self/fd/1"})
        EXPECT_EQ(run({"migrate", "film.xml", "-o", name}).out, result) << name;
    // The file behind it is written to as it was opened, and stays the same file.
    write("out", "before\n");
    struct stat before = {};
    ASSERT_EQ(stat(bytesOf("out").constData(), &before), 0);
    const Outcome outcome = runAfter("exec >>out; ", {"migrate", "film.xml", "-o", "/dev/stdout", "--json"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_EQ(read("out"), "before\n" + result);
    EXPECT_TRUE(outcome.err.startsWith('{'))
        << outcome.err.toStdString(); // the summary doesn't mix with the project
    struct stat after = {};
    ASSERT_EQ(stat(bytesOf("out").constData(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino);
    EXPECT_EQ(files(), (QStringList{"film.xml", "out"}));
}

TEST_F(OutputsTest, AnInputWithoutAFileGoesToStandardOutput) {
    const Outcome outcome = run({"migrate", "/dev/stdin"}, archive());
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_EQ(outcome.out, run({"migrate", "-"}, archive()).out);
}

// Standard output that takes nothing

TEST_F(OutputsTest, AStandardOutputThatTakesNothingIsAnError) {
    const QList<QStringList> commands = {{"info", "film.xml"},
                                         {"info", "film.xml", "--json"},
                                         {"verify", "film.xml"},
                                         {"verify", "film.xml", "--json"},
                                         {"steps"},
                                         {"steps", "--json"},
                                         {"trace", "film.xml", "--output-dir", "steps", "--force"},
                                         {"migrate", "film.xml", "--json", "--force"},
                                         {"migrate", "film.xml", "-o", "-"},
                                         {"run", "V28_ClipLabelAdaptor", "film.xml"},
                                         {"--help"},
                                         {"migrate", "--help"},
                                         {"--version"}};
    for (const QStringList& command : commands) {
        for (const char* redirection : {"exec >/dev/full; ", "exec >&-; "}) {
            const Outcome outcome = runAfter(redirection, command);
            EXPECT_EQ(outcome.exitCode, 15) << redirection << command.join(' ').toStdString();
            const bool isJson = command.contains("--json");
            EXPECT_TRUE(outcome.err.contains(isJson ? "\"kind\":\"unwritable\",\"text\":\"standard output: "
                                                    : "adaptors: error: standard output: "))
                << redirection << command.join(' ').toStdString() << outcome.err.toStdString();
        }
    }
}

TEST_F(OutputsTest, AClosedStandardOutputThatNobodyNeedsIsNoError) {
    const Outcome outcome = runAfter("exec >&-; ", {"migrate", "film.xml"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_EQ(runAfter("exec <&- >&- 2>&-; ", {"migrate", "film.xml", "--force"}).exitCode, 0);
    EXPECT_TRUE(read(migratedName("film")).startsWith('{'));
    EXPECT_EQ(read("film.xml"), archive());
    EXPECT_EQ(runAfter("exec <&-; ", {"info", "-"}).exitCode, 3);
}

// Names

TEST_F(OutputsTest, NamesWithPercentSignsStayAsTheyAre) {
    for (const char* name : {"100%2", "%1", "a%2Cb", "%3%2%1"}) {
        const QString base = QString::fromLatin1(name);
        write(base + ".xml", archive());
        expectSuccess({"migrate", base + ".xml"});
        EXPECT_TRUE(exists(migratedName(base))) << name;
        expectSuccess({"migrate", base + ".xml", "--bundle", "bundle" + base});
        EXPECT_TRUE(exists("bundle" + base + '/' + migratedName(base))) << name;
        expectSuccess({"trace", base + ".xml", "--output-dir", "steps" + base});
        EXPECT_TRUE(exists("steps" + base)) << name;
        EXPECT_TRUE(run({"info", base + ".xml"}).out.startsWith(base.toUtf8() + ".xml\n")) << name;
    }
}

// What has the name of a file that the program makes

struct Trap {
    const char* name;
    std::function<bool(const QByteArray& path)> make;
};

const Trap traps[] = {
    {"link", [](const QByteArray& path) { return symlink("precious", path.constData()) == 0; }},
    {"link to nothing", [](const QByteArray& path) { return symlink("nowhere", path.constData()) == 0; }},
    {"pipe", [](const QByteArray& path) { return mkfifo(path.constData(), 0600) == 0; }},
    {"folder", [](const QByteArray& path) { return mkdir(path.constData(), 0700) == 0; }},
    {"device",
     [](const QByteArray& path) { return mknod(path.constData(), S_IFCHR | 0666, makedev(1, 3)) == 0; }},
    {"socket",
     [](const QByteArray& path) {
         sockaddr_un address = {};
         address.sun_family = AF_UNIX;
         if (static_cast<std::size_t>(path.size()) >= sizeof address.sun_path)
             return false;
         std::copy(path.begin(), path.end(), address.sun_path);
         const int number = socket(AF_UNIX, SOCK_STREAM, 0);
         const bool isMade = bind(number, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
         close(number);
         return isMade;
     }},
};

TEST_F(OutputsTest, ChosenNamesMustBeFreeOrRegularFiles) {
    write("film.xml", archive({}, " schemaVersion='27'"));
    struct Case {
        QString place; ///< that the program chooses
        QStringList arguments;
    };
    const QList<Case> cases = {
        {"new/" + migratedName("film"), {"migrate", "film.xml", "--bundle", "new"}},
        {"new/" + migratedName("film"), {"migrate", "film.xml", "-o", "new"}},
        {"new/03-V28_ClipLabelAdaptor.xml", {"trace", "film.xml", "--output-dir", "new", "--to", "28"}},
    };
    for (const Trap& trap : traps) {
        for (const Case& one : cases) {
            makeFolder("new");
            write("new/precious", "precious");
            if (!trap.make(bytesOf(one.place)))
                continue; // devices are root's to make
            for (const bool force : {false, true}) {
                const Outcome outcome =
                    runAfter("set -- timeout 20 \"$@\"; ",
                             one.arguments + (force ? QStringList("--force") : QStringList()));
                EXPECT_TRUE(outcome.exitCode == 15 || outcome.exitCode == 16)
                    << trap.name << outcome.exitCode;
                EXPECT_TRUE(outcome.err.contains("only a regular file is replaced here"))
                    << trap.name << ": " << outcome.err.toStdString();
                EXPECT_EQ(read("new/precious"), "precious");
                EXPECT_FALSE(exists("new/nowhere"));
            }
            ASSERT_TRUE(QDir(path("new")).removeRecursively());
        }
    }
}

} // namespace
