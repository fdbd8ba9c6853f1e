// A backup is put back in one move, and nothing is lost by that.

#include "Reader/Backups.h"
#include "support/ProgramTest.h"

#include <gtest/gtest.h>

#include <QDateTime>

#include <sys/stat.h>
#include <unistd.h>

using Tests::archive;
using Tests::Outcome;

namespace {

class RestoreTest : public Tests::ProgramTest {
protected:
    void SetUp() override { write("film.xml", archive()); }

    void migrateInPlace(const QString& name = "film.xml") const {
        const Outcome outcome = run({"migrate", name, "--in-place"});
        ASSERT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    }
    void restore(const QString& name = "film.xml") const {
        const Outcome outcome = run({"restore", name});
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
        EXPECT_TRUE(outcome.err.contains("film.xml: restored from ")) << outcome.err.toStdString();
    }
    struct stat statusOf(const QString& name) const {
        struct stat status = {};
        EXPECT_EQ(lstat(QFile::encodeName(path(name)).constData(), &status), 0) << name.toStdString();
        return status;
    }
};

TEST_F(RestoreTest, TheOldFileComesBackAsItWas) {
    ASSERT_EQ(chmod(QFile::encodeName(path("film.xml")).constData(), 0640), 0);
    const struct stat before = statusOf("film.xml");
    migrateInPlace();
    const QByteArray migrated = read("film.xml");
    restore();
    EXPECT_EQ(read("film.xml"), archive());
    EXPECT_EQ(read("film.xml.bak"), migrated);
    EXPECT_EQ(files(), (QStringList{"film.xml", "film.xml.bak"}));
    EXPECT_EQ(statusOf("film.xml").st_mode & 0777U, 0640U);
    EXPECT_EQ(statusOf("film.xml").st_mtim.tv_sec, before.st_mtim.tv_sec);
    EXPECT_EQ(statusOf("film.xml").st_mtim.tv_nsec, before.st_mtim.tv_nsec);
    // Once more, and the migrated file is back.
    restore();
    EXPECT_EQ(read("film.xml"), migrated);
    EXPECT_EQ(read("film.xml.bak"), archive());
}

TEST_F(RestoreTest, TheNewestOfSeveralIsTaken) {
    for (const char* content : {"first", "second", "third"}) {
        write("film.xml", archive().replace("<RootRef", QByteArray("<!--") + content + "--><RootRef"));
        migrateInPlace();
        usleep(20000); // the file system's clock is coarse
    }
    write("film.xml.bak02", "no backup");
    write("film.xml.bakery", "no backup");
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("film.xml.bak4"));
    const auto backups = Reader::backupsOf(path("film.xml"));
    ASSERT_EQ(backups.size(), 3U);
    EXPECT_EQ(backups[0].path, path("film.xml.bak3"));
    EXPECT_EQ(backups[2].path, path("film.xml.bak"));
    const Outcome list = run({"restore", "film.xml", "--list"});
    EXPECT_EQ(list.exitCode, 0);
    EXPECT_EQ(list.out.count('\n'), 3);
    EXPECT_TRUE(list.out.startsWith("film.xml.bak3  made ")) << list.out.toStdString();
    EXPECT_TRUE(read("film.xml").startsWith('{')); // a list changes nothing
    restore();
    EXPECT_TRUE(read("film.xml").contains("<!--third-->"));
    EXPECT_TRUE(read("film.xml.bak2").contains("<!--second-->"));
    // A free number is used again: the order is that of time, not of numbers.
    ASSERT_TRUE(QFile::remove(path("film.xml.bak")));
    usleep(20000);
    migrateInPlace();
    EXPECT_EQ(Reader::backupsOf(path("film.xml")).front().path, path("film.xml.bak"));
}

TEST_F(RestoreTest, AFileThatIsGoneComesBack) {
    migrateInPlace();
    ASSERT_TRUE(QFile::remove(path("film.xml")));
    restore();
    EXPECT_EQ(read("film.xml"), archive());
    EXPECT_EQ(files(), QStringList{"film.xml"});
}

TEST_F(RestoreTest, ALinkStaysALink) {
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("other"));
    ASSERT_TRUE(QFile::rename(path("film.xml"), path("other/film.xml")));
    ASSERT_TRUE(QFile::link("other/film.xml", path("film.xml")));
    migrateInPlace();
    EXPECT_TRUE(exists("other/film.xml.bak"));
    restore();
    EXPECT_TRUE(QFileInfo(path("film.xml")).isSymLink());
    EXPECT_EQ(read("other/film.xml"), archive());
}

TEST_F(RestoreTest, WithoutABackupNothingHappens) {
    expectFailure({"restore", "film.xml"}, 3, "film.xml: has no backup film.xml.bak beside it");
    expectFailure({"restore", "film.xml", "--list"}, 3, "has no backup");
    expectFailure({"restore", "none.xml"}, 3, "none.xml: has no backup");
    EXPECT_EQ(read("film.xml"), archive());
    // What only has the name of a backup is none.
    ASSERT_TRUE(QFile::link("film.xml", path("film.xml.bak")));
    expectFailure({"restore", "film.xml"}, 3, "has no backup");
}

TEST_F(RestoreTest, QuietSaysNothing) {
    migrateInPlace();
    const Outcome outcome = run({"restore", "film.xml", "--quiet"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out + outcome.err, "");
    EXPECT_EQ(read("film.xml"), archive());
}

TEST_F(RestoreTest, AFolderNamesItsProject) {
    migrateInPlace();
    restore(".");
    EXPECT_EQ(read("film.xml"), archive());
}

} // namespace
