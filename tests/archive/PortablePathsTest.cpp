// Portable paths where the working directory plays a part, there and back again, and between systems.

#include "Adaptors/Project/PortableLoadAdaptor.h"
#include "Adaptors/Project/PortableSaveAdaptor.h"
#include "FS/FS.h"
#include "Serialize/Json/FlatObject.h"
#include "support/Folders.h"

#include <gtest/gtest.h>

#include <QDir>

namespace {

using nlohmann::json;
using Serialize::Json::FlatObject;
using Tests::setFolders;

class PortablePaths : public testing::Test {
protected:
    void TearDown() override { setFolders({}, {}, {}); }

    template <class Adaptor>
    static QString through(Adaptor&& adaptor, const QString& path) {
        FlatObject document;
        json* file = document.createObject("File");
        (*file)["path"] = path;
        adaptor.adapt(document);
        EXPECT_TRUE((*file)["path"].is_string());
        return QString::fromStdString((*file)["path"].get<std::string>());
    }

    static QString loaded(const QString& path, const QString& location = "/projects/holiday/project.json") {
        return through(Project::PortableLoadAdaptor(location), path);
    }
    static QString saved(const QString& path, const QString& location = "/projects/holiday/project.json") {
        return through(Project::PortableSaveAdaptor(location), path);
    }
};

TEST_F(PortablePaths, ARelativeRootIsMadeAbsoluteAtLoad) {
    setFolders({}, "models", {});
    EXPECT_EQ(loaded("#AI_MODELS_ROOT#/net.bin"), QDir::currentPath() + "/models/net.bin");
}

TEST_F(PortablePaths, ARelativeLocationIsRelativeToTheWorkingDirectory) {
    const QString here = QDir::currentPath();
    EXPECT_EQ(loaded("media/a.mp4", "film/project.json"), here + "/film/media/a.mp4");
    EXPECT_EQ(loaded("media/a.mp4", "project.json"), here + "/media/a.mp4");
    EXPECT_EQ(saved(here + "/film/media/a.mp4", "film/project.json"), QString("media/a.mp4"));
    EXPECT_EQ(saved(here + "/a.mp4", "film/project.json"), QString("../a.mp4"));
}

TEST_F(PortablePaths, ARelativePathBelowARootInTheWorkingDirectoryGetsItsMarker) {
    setFolders(QDir::currentPath(), {}, {});
    EXPECT_EQ(saved("media/a.mp4"), QString("#PACKAGES_ROOT#/media/a.mp4"));
    EXPECT_EQ(saved(""), QString()); // an empty path is in no folder, not even in the working directory
}

TEST_F(PortablePaths, EachCallReadsTheSettingsAgain) {
    Project::PortableSaveAdaptor save("/projects/project.json");
    Project::PortableLoadAdaptor load("/projects/project.json");
    setFolders("/one", {}, {});
    EXPECT_EQ(through(save, "/one/a"), QString("#PACKAGES_ROOT#/a"));
    EXPECT_EQ(through(load, "#PACKAGES_ROOT#/a"), QString("/one/a"));
    setFolders("/two", {}, {});
    EXPECT_EQ(through(save, "/one/a"), QString("../one/a"));
    EXPECT_EQ(through(load, "#PACKAGES_ROOT#/a"), QString("/two/a"));
}

TEST_F(PortablePaths, ACopyHasThePathOfItsSource) {
    const Project::PortableSaveAdaptor source("/projects/holiday/project.json");
    Project::PortableSaveAdaptor assigned("/elsewhere/project.json");
    EXPECT_EQ(through(assigned, "/elsewhere/a"), QString("a"));
    assigned = source;
    EXPECT_EQ(through(assigned, "/projects/holiday/a"), QString("a"));
    EXPECT_EQ(through(Project::PortableSaveAdaptor(source), "/projects/holiday/a"), QString("a"));
}

TEST_F(PortablePaths, BelowARootSavingAndLoadingGivesTheNormalForm) {
    setFolders("/opt/editor/packages", "/opt/editor/packages/models", "/home/user/downloads/");
    for (const QString path : {"/opt/editor/packages/a.svg", "/opt/editor//packages/./a/../b.svg",
                               "/opt/editor/packages/models/net.bin", "/home/user/downloads/music/",
                               "/home/./user/downloads/a b/\u00e4.mp3",
                               "/opt/editor/packages/#AI_MODELS_ROOT#/a", "/home/user/downloads/..."}) {
        EXPECT_EQ(loaded(saved(path)), QDir::cleanPath(path)) << path.toStdString();
        EXPECT_EQ(saved(saved(path)), saved(path)) << path.toStdString();
        // Not only in this folder: the marker is resolved in another one.
        EXPECT_EQ(loaded(saved(path), "/other/project.json"), QDir::cleanPath(path)) << path.toStdString();
    }
}

TEST_F(PortablePaths, OutsideTheRootsSavingAndLoadingGivesTheSameFile) {
    for (const QString path : {"/projects/holiday/a.mp4", "/projects/a.mp4", "/media/x/../a.mp4", "/"})
        EXPECT_EQ(QDir::cleanPath(loaded(saved(path))), QDir::cleanPath(path)) << path.toStdString();
    // It is relative to the project, which may be moved.
    EXPECT_EQ(loaded(saved("/projects/holiday/a.mp4"), "/moved/project.json"), QString("/moved/a.mp4"));
    EXPECT_EQ(loaded(saved("")), QString());
}

constexpr auto windowsLocation = "C:\\Users\\me\\holiday\\project.json";
constexpr auto serverLocation = "\\\\server\\share\\holiday\\project.json";

TEST_F(PortablePaths, ARootOnADriveOrServerIsAbsoluteAtLoad) {
    setFolders("\\\\server\\packages\\", "C:/models", "D:\\");
    EXPECT_EQ(loaded("#PACKAGES_ROOT#/a.svg"), QString("//server/packages/a.svg"));
    EXPECT_EQ(loaded("#AI_MODELS_ROOT#/net.bin"), QString("C:/models/net.bin"));
    EXPECT_EQ(loaded("#DOWNLOADABLE_ROOT#/a/../b.mp3"), QString("D:/b.mp3"));
}

TEST_F(PortablePaths, APathBelowARootOnADriveOrServerTakesItsMarker) {
    setFolders("\\\\server\\packages\\", "C:/models", "D:\\");
    EXPECT_EQ(saved("//SERVER/Packages/a.svg"), QString("#PACKAGES_ROOT#/a.svg"));
    EXPECT_EQ(saved("c:\\Models\\nets\\Net.bin"), QString("#AI_MODELS_ROOT#/nets/Net.bin"));
    EXPECT_EQ(saved("D:/a.mp3", windowsLocation), QString("#DOWNLOADABLE_ROOT#/a.mp3"));
    // Not below a root: a mere common prefix, and the root itself.
    EXPECT_EQ(saved("C:/models2/net.bin"), QString("C:/models2/net.bin"));
    EXPECT_EQ(saved("C:\\models\\"), QString("C:/models"));
    EXPECT_EQ(saved("D:\\"), QString("D:/"));
}

TEST_F(PortablePaths, NoForeignPathLiesBelowAPosixRoot) {
    setFolders("/", QDir::currentPath(), {});
    EXPECT_EQ(saved("C:/Users/me/clip.mp4"), QString("C:/Users/me/clip.mp4"));
    EXPECT_EQ(saved("\\\\server\\share\\clip.mp4"), QString("//server/share/clip.mp4"));
    setFolders("C:/", {}, "//server");
    EXPECT_EQ(saved("/server/clip.mp4", "/projects/project.json"), QString("../server/clip.mp4"));
}

TEST_F(PortablePaths, AWindowsPathStaysAbsoluteInAPosixProject) {
    for (const QString path :
         {"C:/Users/me/clip.mp4", "c:\\Users\\me\\clip.mp4", "\\\\server\\share\\clip.mp4"}) {
        EXPECT_EQ(loaded(path), path);
        EXPECT_EQ(saved(loaded(path)), FS::normalizedPath(path));
        EXPECT_EQ(loaded(saved(path), "/moved/elsewhere/project.json"), FS::normalizedPath(path));
    }
    EXPECT_EQ(saved("C:/Users/me/clip.mp4"), QString("C:/Users/me/clip.mp4"));
    EXPECT_EQ(saved("C:\\Users\\me\\.\\clip.mp4"), QString("C:/Users/me/clip.mp4"));
}

TEST_F(PortablePaths, APosixPathStaysAbsoluteInAWindowsProject) {
    for (const char* location : {windowsLocation, serverLocation}) {
        EXPECT_EQ(loaded("/home/me/clip.mp4", location), QString("/home/me/clip.mp4"));
        EXPECT_EQ(saved("/home/me/clip.mp4", location), QString("/home/me/clip.mp4"));
        EXPECT_EQ(saved("/home/me/x/../clip.mp4", location), QString("/home/me/clip.mp4"));
    }
}

TEST_F(PortablePaths, AWindowsProjectHasRelativePathsOnItsOwnDriveOnly) {
    EXPECT_EQ(saved("C:\\Users\\me\\holiday\\raw\\clip.mp4", windowsLocation), QString("raw/clip.mp4"));
    EXPECT_EQ(saved("c:/users/ME/Music/a.mp3", windowsLocation), QString("../Music/a.mp3"));
    EXPECT_EQ(saved("D:\\clip.mp4", windowsLocation), QString("D:/clip.mp4"));
    EXPECT_EQ(saved("//server/share/clip.mp4", windowsLocation), QString("//server/share/clip.mp4"));
    EXPECT_EQ(saved("raw/./clip.mp4", windowsLocation), QString("raw/clip.mp4"));
    EXPECT_EQ(saved("", windowsLocation), QString());
    EXPECT_EQ(loaded("raw/clip.mp4", windowsLocation), QString("C:/Users/me/holiday/raw/clip.mp4"));
    EXPECT_EQ(loaded("clip.mp4", "C:/project.json"), QString("C:/clip.mp4"));
    EXPECT_EQ(loaded("", windowsLocation), QString());
}

TEST_F(PortablePaths, AProjectOnAServerHasRelativePathsOnThatServerOnly) {
    EXPECT_EQ(saved("//Server/Share/holiday/clip.mp4", serverLocation), QString("clip.mp4"));
    EXPECT_EQ(saved("//server/music/a.mp3", serverLocation), QString("../../music/a.mp3"));
    EXPECT_EQ(saved("//server2/share/holiday/clip.mp4", serverLocation),
              QString("//server2/share/holiday/clip.mp4"));
    EXPECT_EQ(saved("C:/clip.mp4", serverLocation), QString("C:/clip.mp4"));
    EXPECT_EQ(loaded("clip.mp4", serverLocation), QString("//server/share/holiday/clip.mp4"));
}

TEST_F(PortablePaths, InAWindowsProjectThereAndBackIsTheSameFile) {
    setFolders("C:/packages", "D:/models", "//server/downloads");
    for (const QString path : {"C:/Users/me/holiday/a.mp4", "C:/Users/\u00c4/a b.mp4", "C:/a.mp4", "C:/",
                               "D:/a.mp4", "//server/share/a.mp4", "/home/me/a.mp4", "C:/packages/a.svg",
                               "D:/models/a/net.bin", "//server/downloads/\u6620.mp3"})
        EXPECT_EQ(FS::normalizedPath(loaded(saved(path, windowsLocation), windowsLocation)), path)
            << path.toStdString();
    // It moves with the project, to another system too.
    EXPECT_EQ(loaded(saved("C:\\Users\\me\\holiday\\a.mp4", windowsLocation), "/moved/project.json"),
              QString("/moved/a.mp4"));
}

TEST_F(PortablePaths, TheDescriptionOfAnImportFollowsAForeignPath) {
    FlatObject document;
    json* import = document.createObject("Import::Object");
    (*import)["resourcePath"] = "C:\\Users\\me\\clip.mp4";
    Project::PortableSaveAdaptor("/projects/holiday/project.json").adapt(document);
    EXPECT_EQ((*import)["resourcePath"], "C:/Users/me/clip.mp4");
    EXPECT_EQ((*import)["description"], "C:/Users/me/clip.mp4");
}

TEST_F(PortablePaths, TheOldValueStaysWhereAFieldCannotBeRead) {
    FlatObject document;
    json* object = document.createObject("Stabilization::Object");
    (*object)["pathStabilized"] = "/projects/holiday/a";
    Project::PortableSaveAdaptor adaptor("/projects/holiday/project.json");
    try {
        adaptor.adapt(document);
        FAIL() << "nothing was thrown";
    } catch (const json::type_error& error) {
        EXPECT_EQ(error.id, 302);
        EXPECT_STREQ(error.what(), "[json.exception.type_error.302] type must be string, but is null");
    }
    EXPECT_EQ((*object)["pathStabilized"], "/projects/holiday/a");
    EXPECT_FALSE(object->contains("pathOriginal")); // the lookup created no key
}

} // namespace
