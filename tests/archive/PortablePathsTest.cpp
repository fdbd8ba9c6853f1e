// Portable paths that depend on the working directory, and conversion in both directions.

#include "Adaptors/Project/PortableLoadAdaptor.h"
#include "Adaptors/Project/PortableSaveAdaptor.h"
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
    setFolders({}, "C:/models", {});
    EXPECT_EQ(loaded("#AI_MODELS_ROOT#/net.bin"), QDir::currentPath() + "/C:/models/net.bin");
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

TEST_F(PortablePaths, TheOldValueStaysIfAFieldCannotBeRead) {
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
