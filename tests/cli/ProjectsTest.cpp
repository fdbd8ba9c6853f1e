// Which of a folder's files is the project.

#include "Projects.h"
#include "support/ProgramTest.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

using Projects::projectsAmong;
using Tests::archive;
using Tests::migratedName;
using Tests::Outcome;
using Tests::ProgramTest;

namespace {

TEST(Projects, ResultsBesideTheirProjectDoNotCount) {
    EXPECT_EQ(projectsAmong({"film.v77.json", "film.xml"}), QStringList{"film.xml"});
    EXPECT_EQ(projectsAmong({"film.json", "film.v77.json"}), QStringList{"film.json"});
    EXPECT_EQ(projectsAmong({"film.v62.v77.json", "film.v62.xml", "film.xml"}), QStringList{"film.xml"});
    EXPECT_EQ(projectsAmong({"film.v77.json"}), QStringList{"film.v77.json"});
    EXPECT_EQ(projectsAmong({"film.v77.json", "other.xml"}), (QStringList{"film.v77.json", "other.xml"}));
    EXPECT_EQ(projectsAmong({"film.vx.json", "film.v.json", "film.xml"}),
              (QStringList{"film.vx.json", "film.v.json", "film.xml"}));
    EXPECT_EQ(projectsAmong({"a.json", "a.xml"}), (QStringList{"a.json", "a.xml"}));
    EXPECT_EQ(projectsAmong({"FILM.XML", "FILM.v77.json"}), QStringList{"FILM.XML"});
}

TEST(Projects, OtherFilesAreNone) {
    EXPECT_EQ(projectsAmong({"film.xml.bak", "film.json.bak2", "film.v77.json.12-1.tmp", "content_1.svg",
                             ".film.xml", ".xml", "xml", "film"}),
              QStringList());
}

TEST_F(ProgramTest, AFolderKeepsWorkingWhenItsResultLiesThere) {
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("old"));
    write("old/film.xml", archive());
    ASSERT_EQ(run({"migrate", "old/"}).exitCode, 0);
    ASSERT_TRUE(exists("old/" + migratedName("film")));
    write("old/film.xml.bak", "backup");
    write("old/film.xml.12-1.tmp", "left over");
    EXPECT_EQ(run({"migrate", "old/"}).exitCode, 16);
    EXPECT_EQ(run({"migrate", "old/", "--force"}).exitCode, 0);
    EXPECT_EQ(run({"migrate", "old/", "--to", "62"}).exitCode, 0);
    EXPECT_TRUE(run({"info", "old"}).out.startsWith("old/film.xml\n"));
    EXPECT_EQ(run({"migrate", "old", "--in-place"}).exitCode, 0);
    EXPECT_TRUE(run({"info", "old"}).out.contains("version: 77"));
}

TEST_F(ProgramTest, AFolderThatCannotBeReadIsNotEmpty) {
    if (geteuid() == 0)
        GTEST_SKIP() << "root may read every folder";
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("closed"));
    ASSERT_EQ(chmod(QFile::encodeName(path("closed")).constData(), 0), 0);
    expectFailure({"info", "closed"}, 3, "closed: Permission denied; check its name and its permissions");
    ASSERT_EQ(chmod(QFile::encodeName(path("closed")).constData(), 0700), 0);
}

TEST_F(ProgramTest, SeveralProjectsOfAFolderAreNamed) {
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("old"));
    expectFailure({"info", "old"}, 3, "this one holds none; name the project");
    write("old/film.xml", archive());
    write("old/film.v77.json", archive());
    write("old/other.json", "{}");
    expectFailure({"info", "old"}, 3, "this one holds 2: film.xml, other.json; name the project");
    for (int number = 0; number < 12; ++number)
        write("old/more" + QString::number(number) + ".xml", archive());
    const Outcome outcome = run({"info", "old"});
    EXPECT_TRUE(outcome.err.contains("this one holds 14: ") && outcome.err.contains(" and 4 more; name"))
        << outcome.err.toStdString();
}

} // namespace
