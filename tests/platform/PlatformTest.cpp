// The default services of the embedding editor.

#include "FS/FS.h"
#include "MTime/MTime.h"
#include "Settings/Settings.h"
#include "support/Folders.h"

#include <gtest/gtest.h>

#include <QDir>

#include <limits>
#include <type_traits>

namespace {

constexpr std::int64_t maxCount = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t minCount = std::numeric_limits<std::int64_t>::min();

TEST(MTime, CountsMilliseconds) {
    EXPECT_EQ(MTime().count(), 0);
    EXPECT_EQ(MTime(1500).count(), 1500);
    EXPECT_EQ(MTime::fromMs(1500), MTime(1500));
    EXPECT_EQ(MTime(1500).toMs(), 1500);
    EXPECT_EQ(MTime::fromMs(-7).toMs(), -7);
    EXPECT_EQ(MTime::fromMs(maxCount).count(), maxCount);
    EXPECT_EQ(MTime(minCount).toMs(), minCount);
}

TEST(MTime, IsNotCreatedFromANumberImplicitly) {
    static_assert(!std::is_convertible_v<std::int64_t, MTime>);
    static_assert(!std::is_convertible_v<MTime, std::int64_t>);
    static_assert(std::is_same_v<decltype(MTime().count()), std::int64_t>);
    static_assert(std::is_same_v<decltype(MTime().toMs()), std::int64_t>);
}

TEST(MTime, AddsAndSubtracts) {
    EXPECT_EQ(MTime(2) + MTime(3), MTime(5));
    EXPECT_EQ(MTime(2) - MTime(3), MTime(-1));
    EXPECT_EQ(MTime(minCount) + MTime(maxCount), MTime(-1));
}

TEST(MTime, WrapsInsteadOfOverflowing) {
    EXPECT_EQ(MTime(maxCount) + MTime(1), MTime(minCount));
    EXPECT_EQ(MTime(minCount) - MTime(1), MTime(maxCount));
    EXPECT_EQ(MTime() - MTime(minCount), MTime(minCount));
}

TEST(MTime, Compares) {
    EXPECT_TRUE(MTime(2) == MTime(2));
    EXPECT_TRUE(MTime(2) != MTime(3));
    EXPECT_TRUE(MTime(2) < MTime(3));
    EXPECT_TRUE(MTime(3) > MTime(2));
    EXPECT_TRUE(MTime(2) <= MTime(2));
    EXPECT_TRUE(MTime(minCount) < MTime(maxCount));
    EXPECT_TRUE((MTime(-1) <=> MTime(0)) < 0);
    EXPECT_TRUE((MTime(1) <=> MTime(1)) == 0);
    EXPECT_TRUE((MTime(1) <=> MTime(-1)) > 0);
}

TEST(FS, AbsolutePathIsTheDirectory) {
    EXPECT_EQ(FS::absolutePath("/film/project.xml"), QString("/film"));
    EXPECT_EQ(FS::absolutePath("/film/"), QString("/film"));
    EXPECT_EQ(FS::absolutePath("/project.xml"), QString("/"));
    EXPECT_EQ(FS::absolutePath("project.xml"), QDir::currentPath());
    EXPECT_EQ(FS::absolutePath("film/project.xml"), QDir::currentPath() + "/film");
}

TEST(FS, AbsoluteFilePathKeepsTheName) {
    EXPECT_EQ(FS::absoluteFilePath("/film/project.xml"), QString("/film/project.xml"));
    EXPECT_EQ(FS::absoluteFilePath("film/a.mp4"), QDir::currentPath() + "/film/a.mp4");
}

TEST(FS, ToRelativePath) {
    EXPECT_EQ(FS::toRelativePath("/film", "/film/raw/a.mp4"), QString("raw/a.mp4"));
    EXPECT_EQ(FS::toRelativePath("/film/cut", "/film/raw/a.mp4"), QString("../raw/a.mp4"));
    EXPECT_EQ(FS::toRelativePath("/film", "/music/a.mp3"), QString("../music/a.mp3"));
    EXPECT_EQ(FS::toRelativePath("/film", "/film"), QString("."));
    EXPECT_EQ(FS::toRelativePath("/film", "raw/a.mp4"), QString("raw/a.mp4"));
}

TEST(FS, FromRelativePath) {
    EXPECT_EQ(FS::fromRelativePath("/film", "raw/a.mp4"), QString("/film/raw/a.mp4"));
    EXPECT_EQ(FS::fromRelativePath("/film", "../music/a.mp3"), QString("/film/../music/a.mp3"));
    EXPECT_EQ(FS::fromRelativePath("/film", "/music/a.mp3"), QString("/music/a.mp3"));
}

TEST(FS, SubPathIsStrictlyBelow) {
    EXPECT_TRUE(FS::isSubPath("/models", "/models/net.bin"));
    EXPECT_TRUE(FS::isSubPath("/models", "/models/a/b/net.bin"));
    EXPECT_TRUE(FS::isSubPath("/", "/models"));
    EXPECT_FALSE(FS::isSubPath("/models", "/models"));
    EXPECT_FALSE(FS::isSubPath("/models", "/models/"));
    EXPECT_FALSE(FS::isSubPath("/", "/"));
    EXPECT_FALSE(FS::isSubPath("/models/a", "/models"));
}

TEST(FS, SubPathIsNoMereCommonPrefix) {
    EXPECT_FALSE(FS::isSubPath("/models", "/models2/net.bin"));
    EXPECT_FALSE(FS::isSubPath("/models", "/modelsnet.bin"));
    EXPECT_FALSE(FS::isSubPath("/models/net", "/models/net.bin"));
}

TEST(FS, SubPathComparesCleanedPaths) {
    EXPECT_TRUE(FS::isSubPath("/models/", "/models/net.bin"));
    EXPECT_TRUE(FS::isSubPath("/models/./x/..", "/models//net.bin"));
    EXPECT_FALSE(FS::isSubPath("/models", "/models/../net.bin"));
    EXPECT_FALSE(FS::isSubPath("/models", "/models/a/.."));
    EXPECT_TRUE(FS::isSubPath("/models", "/other/../models/net.bin"));
}

TEST(FS, SubPathComparesAbsolutePaths) {
    EXPECT_TRUE(FS::isSubPath(QDir::currentPath(), "film/a.mp4"));
    EXPECT_TRUE(FS::isSubPath("film", "film/a.mp4"));
    EXPECT_TRUE(FS::isSubPath("film", QDir::currentPath() + "/film/a.mp4"));
    EXPECT_FALSE(FS::isSubPath("film", "other/a.mp4"));
}

TEST(FS, NothingIsBelowAnEmptyRootAndAnEmptyPathIsNowhere) {
    EXPECT_FALSE(FS::isSubPath("", "/models"));
    EXPECT_FALSE(FS::isSubPath("", "film"));
    EXPECT_FALSE(FS::isSubPath("/", ""));
    EXPECT_FALSE(FS::isSubPath("", ""));
}

TEST(FS, JoinPath) {
    EXPECT_EQ(FS::joinPath({"#PACKAGES_ROOT#", "a/b.svg"}, ""), QString("#PACKAGES_ROOT#/a/b.svg"));
    EXPECT_EQ(FS::joinPath({"a", "b", "c"}, QString()), QString("a/b/c"));
    EXPECT_EQ(FS::joinPath({"a", "b"}, "\\"), QString("a\\b"));
    EXPECT_EQ(FS::joinPath({"a"}, ""), QString("a"));
    EXPECT_EQ(FS::joinPath({}, ""), QString());
}

TEST(FS, NormalizedPath) {
    EXPECT_EQ(FS::normalizedPath("/film/./raw//x/../a.mp4"), QString("/film/raw/a.mp4"));
    EXPECT_EQ(FS::normalizedPath("../raw/"), QString("../raw"));
    EXPECT_EQ(FS::normalizedPath("."), QString("."));
    EXPECT_EQ(FS::normalizedPath(""), QString());
    EXPECT_EQ(FS::normalizedPath("#PACKAGES_ROOT#/a/../b.svg"), QString("#PACKAGES_ROOT#/b.svg"));
}

// Paths with a drive or a server, from whatever system.

TEST(FS, NormalizedForeignPathHasSlashesOnly) {
    EXPECT_EQ(FS::normalizedPath("C:/film/a.mp4"), QString("C:/film/a.mp4"));
    EXPECT_EQ(FS::normalizedPath("C:\\film\\a.mp4"), QString("C:/film/a.mp4"));
    EXPECT_EQ(FS::normalizedPath("C:/film\\raw/a.mp4"), QString("C:/film/raw/a.mp4"));
    EXPECT_EQ(FS::normalizedPath("\\\\server\\share\\a.mp4"), QString("//server/share/a.mp4"));
    EXPECT_EQ(FS::normalizedPath("//server\\share/a.mp4"), QString("//server/share/a.mp4"));
    EXPECT_EQ(FS::normalizedPath("\\\\server/share"), QString("//server/share"));
}

TEST(FS, NormalizedForeignPathIsClean) {
    EXPECT_EQ(FS::normalizedPath("C:/film/./raw//x/../a.mp4"), QString("C:/film/raw/a.mp4"));
    EXPECT_EQ(FS::normalizedPath("C:\\film\\\\.\\raw\\..\\a.mp4"), QString("C:/film/a.mp4"));
    EXPECT_EQ(FS::normalizedPath("C://film"), QString("C:/film"));
    EXPECT_EQ(FS::normalizedPath("C:/film/"), QString("C:/film"));
    EXPECT_EQ(FS::normalizedPath("C:\\film\\\\"), QString("C:/film"));
    EXPECT_EQ(FS::normalizedPath("//server//share/./a/"), QString("//server/share/a"));
    EXPECT_EQ(FS::normalizedPath("C:/.../a..b/.c"), QString("C:/.../a..b/.c"));
}

TEST(FS, NormalizedForeignPathNeverLeavesItsRoot) {
    EXPECT_EQ(FS::normalizedPath("c:\\a\\..\\..\\b"), QString("c:/b"));
    EXPECT_EQ(FS::normalizedPath("C:/.."), QString("C:/"));
    EXPECT_EQ(FS::normalizedPath("C:/../../a/.."), QString("C:/"));
    EXPECT_EQ(FS::normalizedPath("//server/share/../x"), QString("//server/x"));
    EXPECT_EQ(FS::normalizedPath("//server/share/../../x"), QString("//server/x"));
    EXPECT_EQ(FS::normalizedPath("\\\\server\\.."), QString("//server"));
}

TEST(FS, RootOfADriveKeepsItsSlash) {
    EXPECT_EQ(FS::normalizedPath("C:/"), QString("C:/"));
    EXPECT_EQ(FS::normalizedPath("C:\\"), QString("C:/"));
    EXPECT_EQ(FS::normalizedPath("C:/."), QString("C:/"));
    EXPECT_EQ(FS::normalizedPath("C://"), QString("C:/"));
    EXPECT_EQ(FS::normalizedPath("//server/"), QString("//server"));
    EXPECT_EQ(FS::normalizedPath("\\\\server"), QString("//server"));
    EXPECT_EQ(FS::normalizedPath("//a:/"), QString("//a:"));
}

TEST(FS, NormalizedForeignPathKeepsItsLetters) {
    EXPECT_EQ(FS::normalizedPath("c:/Film/A.MP4"), QString("c:/Film/A.MP4"));
    EXPECT_EQ(FS::normalizedPath("C:\\Fil\u0301m\\\u00c4 \u6620\\a b.mp4"),
              QString("C:/Fil\u0301m/\u00c4 \u6620/a b.mp4"));
    EXPECT_EQ(FS::normalizedPath("//SERV\u00c4R/Share"), QString("//SERV\u00c4R/Share"));
}

TEST(FS, NormalizedTwiceIsNormalizedOnce) {
    for (const QString path : {"C:/", "C:\\a\\..", "z:/a/b/", "\\\\server\\share\\", "//server", "//", "///",
                               "///a", "\\\\\\\\server\\share", "//../a", "//./a", "//?/C:/a"}) {
        const QString once = FS::normalizedPath(path);
        EXPECT_EQ(FS::normalizedPath(once), once) << path.toStdString();
    }
    EXPECT_EQ(FS::normalizedPath("//"), QString("//"));
    EXPECT_EQ(FS::normalizedPath("//../a"), QString("//../a")); // the server's name, not the folder above
}

TEST(FS, OtherPathsAreNotForeign) {
    EXPECT_EQ(FS::normalizedPath("C:"), QString("C:"));
    EXPECT_EQ(FS::normalizedPath("C:film/x/../a.mp4"), QString("C:film/a.mp4"));
    EXPECT_EQ(FS::absoluteFilePath("C:"), QDir::currentPath() + "/C:");
    EXPECT_EQ(FS::absoluteFilePath("C:a.mp4"), QDir::currentPath() + "/C:a.mp4");
    EXPECT_EQ(FS::fromRelativePath("/film", "C:"), QString("/film/C:"));
    EXPECT_EQ(FS::fromRelativePath("/film", "CD:/a"), QString("/film/CD:/a"));
    EXPECT_EQ(FS::fromRelativePath("/film", "1:/a"), QString("/film/1:/a"));
    EXPECT_EQ(FS::fromRelativePath("/film", " C:/a"), QString("/film/ C:/a"));
    EXPECT_EQ(FS::fromRelativePath("/film", "@:/a"), QString("/film/@:/a"));
    EXPECT_EQ(FS::fromRelativePath("/film", "[:/a"), QString("/film/[:/a"));
    EXPECT_EQ(FS::fromRelativePath("/film", "\u00e4:/a"), QString("/film/\u00e4:/a"));
    EXPECT_EQ(FS::fromRelativePath("/film", "\u212a:/a"), QString("/film/\u212a:/a")); // lower case "k"
    EXPECT_EQ(FS::fromRelativePath("/film", "media://a"), QString("/film/media://a"));
    EXPECT_EQ(FS::fromRelativePath("/film", "raw\\a.mp4"), QString("/film/raw\\a.mp4"));
    EXPECT_EQ(FS::fromRelativePath("/film", "\\a.mp4"), QString("/film/\\a.mp4"));
    EXPECT_EQ(FS::fromRelativePath("/film", "\\/server/a"), QString("/film/\\/server/a"));
    EXPECT_EQ(FS::fromRelativePath("/film", "/\\server/a"), QString("/\\server/a"));
    EXPECT_EQ(FS::normalizedPath("/film\\raw/../a"), QString("/a"));
    EXPECT_EQ(FS::toRelativePath("/film", "C:"), QString("C:"));
    EXPECT_EQ(FS::toRelativePath("/film", "/FILM/a"), QString("../FILM/a"));
    EXPECT_FALSE(FS::isSubPath("/film", "/FILM/a"));
}

TEST(FS, EveryLetterIsADrive) {
    for (const QString letter : {"A", "C", "Z", "a", "c", "z"})
        EXPECT_EQ(FS::normalizedPath(letter + ":\\a\\"), letter + ":/a");
}

TEST(FS, ForeignPathIsAbsolute) {
    EXPECT_EQ(FS::absoluteFilePath("C:/film/a.mp4"), QString("C:/film/a.mp4"));
    EXPECT_EQ(FS::absoluteFilePath("C:\\film\\.\\x\\..\\a.mp4"), QString("C:/film/a.mp4"));
    EXPECT_EQ(FS::absoluteFilePath("\\\\server\\share\\a.mp4"), QString("//server/share/a.mp4"));
    EXPECT_EQ(FS::absoluteFilePath("//server"), QString("//server"));
    EXPECT_EQ(FS::absoluteFilePath("C:\\"), QString("C:/"));
}

TEST(FS, AbsolutePathOfAForeignPathIsItsDirectory) {
    EXPECT_EQ(FS::absolutePath("C:\\film\\project.xml"), QString("C:/film"));
    EXPECT_EQ(FS::absolutePath("C:/film/x/../project.xml"), QString("C:/film"));
    EXPECT_EQ(FS::absolutePath("C:/project.xml"), QString("C:/"));
    EXPECT_EQ(FS::absolutePath("C:/"), QString("C:/"));
    EXPECT_EQ(FS::absolutePath("C:/film/"), QString("C:/")); // the directory of "C:/film"
    EXPECT_EQ(FS::absolutePath("\\\\server\\share\\project.xml"), QString("//server/share"));
    EXPECT_EQ(FS::absolutePath("//server/project.xml"), QString("//server"));
    EXPECT_EQ(FS::absolutePath("//server"), QString("//server"));
}

TEST(FS, FromRelativePathLeavesAForeignPathAsItIs) {
    for (const QString base : {"/film", "film", "", "C:/film", "D:\\film", "//server/share"}) {
        for (const QString path :
             {"C:/a/../b.mp4", "c:\\a\\b.mp4", "C:/", "//server//share/", "\\\\server\\share"})
            EXPECT_EQ(FS::fromRelativePath(base, path), path) << base.toStdString();
    }
}

TEST(FS, FromRelativePathBelowAForeignBase) {
    EXPECT_EQ(FS::fromRelativePath("C:/film", "raw/a.mp4"), QString("C:/film/raw/a.mp4"));
    EXPECT_EQ(FS::fromRelativePath("C:\\film\\cut", "a.mp4"), QString("C:/film/cut/a.mp4"));
    EXPECT_EQ(FS::fromRelativePath("C:/film", "../music/a.mp3"), QString("C:/film/../music/a.mp3"));
    EXPECT_EQ(FS::fromRelativePath("C:/film", "raw\\a.mp4"), QString("C:/film/raw\\a.mp4"));
    EXPECT_EQ(FS::fromRelativePath("C:/film", "C:a.mp4"), QString("C:/film/C:a.mp4"));
    EXPECT_EQ(FS::fromRelativePath("C:/", "a.mp4"), QString("C:/a.mp4"));
    EXPECT_EQ(FS::fromRelativePath("C:/film\\", "a.mp4"), QString("C:/film/a.mp4"));
    EXPECT_EQ(FS::fromRelativePath("\\\\server\\share", "a.mp4"), QString("//server/share/a.mp4"));
    EXPECT_EQ(FS::fromRelativePath("//server", "\u00e4.mp4"), QString("//server/\u00e4.mp4"));
}

TEST(FS, FromRelativePathOnAForeignBaseLeavesAPosixPathAsItIs) {
    EXPECT_EQ(FS::fromRelativePath("C:/film", "/music/../a.mp3"), QString("/music/../a.mp3"));
    EXPECT_EQ(FS::fromRelativePath("//server/share", "/a.mp3"), QString("/a.mp3"));
    EXPECT_EQ(FS::fromRelativePath("C:/film", "/"), QString("/"));
}

TEST(FS, ToRelativePathBelowTheSameRoot) {
    EXPECT_EQ(FS::toRelativePath("C:/film", "C:/film/raw/a.mp4"), QString("raw/a.mp4"));
    EXPECT_EQ(FS::toRelativePath("C:\\film\\cut", "C:\\film\\raw\\a.mp4"), QString("../raw/a.mp4"));
    EXPECT_EQ(FS::toRelativePath("C:/film/cut", "C:/music/a.mp3"), QString("../../music/a.mp3"));
    EXPECT_EQ(FS::toRelativePath("C:/", "C:/a.mp4"), QString("a.mp4"));
    EXPECT_EQ(FS::toRelativePath("C:/film/cut", "C:/film"), QString(".."));
    EXPECT_EQ(FS::toRelativePath("C:/film", "C:/"), QString(".."));
    EXPECT_EQ(FS::toRelativePath("C:/film", "C:/film2/a.mp4"), QString("../film2/a.mp4"));
    EXPECT_EQ(FS::toRelativePath("C:/film/", "C:/film/x/..//a.mp4"), QString("a.mp4"));
    EXPECT_EQ(FS::toRelativePath("//server/share", "\\\\server\\share\\a.mp4"), QString("a.mp4"));
    EXPECT_EQ(FS::toRelativePath("//server/one", "//server/two/a.mp4"), QString("../two/a.mp4"));
    EXPECT_EQ(FS::toRelativePath("//server", "//server/share/a.mp4"), QString("share/a.mp4"));
}

TEST(FS, ToRelativePathOfTheSameForeignFolderIsTheFolderItself) {
    EXPECT_EQ(FS::toRelativePath("C:/film", "C:/film"), QString("."));
    EXPECT_EQ(FS::toRelativePath("C:/film/", "c:\\FILM\\x\\.."), QString("."));
    EXPECT_EQ(FS::toRelativePath("C:/", "c:\\"), QString("."));
    EXPECT_EQ(FS::toRelativePath("//server", "\\\\SERVER\\"), QString("."));
}

TEST(FS, ToRelativePathComparesForeignPathsWithoutCase) {
    EXPECT_EQ(FS::toRelativePath("C:/Film", "c:/film/Raw/A.mp4"), QString("Raw/A.mp4"));
    EXPECT_EQ(FS::toRelativePath("c:/FILM/cut", "C:/film/Raw"), QString("../Raw"));
    EXPECT_EQ(FS::toRelativePath("//Server/Share", "//SERVER/share/a"), QString("a"));
    EXPECT_EQ(FS::toRelativePath("C:/\u00c4\u0416", "C:/\u00e4\u0436/\u00d6.mp4"), QString("\u00d6.mp4"));
}

TEST(FS, ToRelativePathToAnotherRootLeavesThePathAsItIs) {
    EXPECT_EQ(FS::toRelativePath("C:/film", "D:\\film\\..\\a.mp4"), QString("D:\\film\\..\\a.mp4"));
    EXPECT_EQ(FS::toRelativePath("C:/film", "//server/film/a.mp4"), QString("//server/film/a.mp4"));
    EXPECT_EQ(FS::toRelativePath("//server/film", "//server2/film/"), QString("//server2/film/"));
    EXPECT_EQ(FS::toRelativePath("//c", "c:/a"), QString("c:/a"));
    EXPECT_EQ(FS::toRelativePath("C:/film", "/film/./a.mp4"), QString("/film/./a.mp4"));
    EXPECT_EQ(FS::toRelativePath("//film", "/film/a.mp4"), QString("/film/a.mp4"));
    for (const QString base : {"/film", "/", "film", ""}) {
        for (const QString path :
             {"C:/Users/me/clip.mp4", "c:\\a\\..\\b", "C:/", "\\\\server\\share\\", "//server"})
            EXPECT_EQ(FS::toRelativePath(base, path), path) << base.toStdString();
    }
}

TEST(FS, ToRelativePathCleansARelativePathOnAForeignBase) {
    EXPECT_EQ(FS::toRelativePath("C:/film", "raw/a.mp4"), QString("raw/a.mp4"));
    EXPECT_EQ(FS::toRelativePath("C:/film", "./raw//x/../a.mp4"), QString("raw/a.mp4"));
    EXPECT_EQ(FS::toRelativePath("//server/share", "../a/"), QString("../a"));
    EXPECT_EQ(FS::toRelativePath("C:/film", "C:"), QString("C:"));
    EXPECT_EQ(FS::toRelativePath("C:/film", ""), QString());
}

TEST(FS, ForeignSubPathLiesStrictlyBelow) {
    EXPECT_TRUE(FS::isSubPath("C:/models", "C:/models/net.bin"));
    EXPECT_TRUE(FS::isSubPath("C:/models", "C:\\models\\a\\b\\net.bin"));
    EXPECT_TRUE(FS::isSubPath("C:/", "C:/models"));
    EXPECT_TRUE(FS::isSubPath("//server", "//server/share"));
    EXPECT_TRUE(FS::isSubPath("\\\\server\\share\\", "//server/share/net.bin"));
    EXPECT_FALSE(FS::isSubPath("C:/models", "C:/models"));
    EXPECT_FALSE(FS::isSubPath("C:/models", "C:/models/"));
    EXPECT_FALSE(FS::isSubPath("C:/", "C:\\"));
    EXPECT_FALSE(FS::isSubPath("//server", "//server/"));
    EXPECT_FALSE(FS::isSubPath("C:/models/a", "C:/models"));
    EXPECT_FALSE(FS::isSubPath("C:/models/a", "C:/models/b/c"));
}

TEST(FS, ForeignSubPathIsNoMereCommonPrefix) {
    EXPECT_FALSE(FS::isSubPath("C:/a", "C:/ab"));
    EXPECT_FALSE(FS::isSubPath("C:/a", "C:/ab/c"));
    EXPECT_FALSE(FS::isSubPath("//server", "//server2/a"));
    EXPECT_FALSE(FS::isSubPath("C:/models/net", "C:/models/net.bin"));
}

TEST(FS, ForeignSubPathComparesCleanedPathsWithoutCase) {
    EXPECT_TRUE(FS::isSubPath("c:/Models", "C:\\MODELS\\net.bin"));
    EXPECT_TRUE(FS::isSubPath("//Server/Share", "//server/SHARE/a"));
    EXPECT_TRUE(FS::isSubPath("C:/\u00c4", "C:/\u00e4/a"));
    EXPECT_TRUE(FS::isSubPath("C:/models/./x/..", "C://models//net.bin"));
    EXPECT_FALSE(FS::isSubPath("C:/models", "C:/models/../net.bin"));
    EXPECT_FALSE(FS::isSubPath("C:/models", "C:/models/a/.."));
    EXPECT_TRUE(FS::isSubPath("C:/../models", "C:/models/net.bin"));
}

TEST(FS, NoPathLiesBelowARootOfAnotherSystem) {
    EXPECT_FALSE(FS::isSubPath("C:/models", "D:/models/net.bin"));
    EXPECT_FALSE(FS::isSubPath("C:/", "//server/share"));
    EXPECT_FALSE(FS::isSubPath("//one", "//two/a"));
    EXPECT_FALSE(FS::isSubPath("/", "C:/models"));
    EXPECT_FALSE(FS::isSubPath("/", "//server/share"));
    EXPECT_FALSE(FS::isSubPath(QDir::currentPath(), "C:/models"));
    EXPECT_FALSE(FS::isSubPath("C:/", "/models"));
    EXPECT_FALSE(FS::isSubPath("//models", "/models/net.bin"));
    EXPECT_FALSE(FS::isSubPath("C:/models", "net.bin"));
    EXPECT_FALSE(FS::isSubPath("", "C:/models"));
    EXPECT_FALSE(FS::isSubPath("C:/", ""));
}

class SettingsTest : public testing::Test {
protected:
    void TearDown() override { Tests::setFolders({}, {}, {}); }
};

TEST_F(SettingsTest, EachFolderIsItsOwn) {
    Settings::setLegacyPackageDeploymentPath("/packages");
    Settings::setAiModelsPath("/models");
    Settings::setDownloadableResourcesPath("/downloads");
    EXPECT_EQ(Settings::legacyPackageDeploymentPath(), QString("/packages"));
    EXPECT_EQ(Settings::aiModelsPath(), QString("/models"));
    EXPECT_EQ(Settings::downloadableResourcesPath(), QString("/downloads"));
}

TEST_F(SettingsTest, LastSettingCounts) {
    Settings::setAiModelsPath("/models");
    Settings::setAiModelsPath("/models2");
    EXPECT_EQ(Settings::aiModelsPath(), QString("/models2"));
    Settings::setAiModelsPath(QString());
    EXPECT_TRUE(Settings::aiModelsPath().isEmpty());
}

} // namespace
