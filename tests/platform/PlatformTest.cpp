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

TEST(FS, SubPathIsComputedOnCleanedPaths) {
    EXPECT_TRUE(FS::isSubPath("/models/", "/models/net.bin"));
    EXPECT_TRUE(FS::isSubPath("/models/./x/..", "//models//net.bin"));
    EXPECT_FALSE(FS::isSubPath("/models", "/models/../net.bin"));
    EXPECT_FALSE(FS::isSubPath("/models", "/models/a/.."));
    EXPECT_TRUE(FS::isSubPath("/models", "/other/../models/net.bin"));
}

TEST(FS, SubPathIsComputedOnAbsolutePaths) {
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
