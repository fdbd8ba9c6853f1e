// Projects that were made on another system.

#include "support/ProgramTest.h"

#include <nlohmann/json.hpp>

namespace {

using namespace Tests;
using nlohmann::json;

class ForeignPaths : public ProgramTest {};

/// The paths of all files in a document, in its order.
std::vector<std::string> pathsIn(const json& value) {
    std::vector<std::string> paths;
    if (value.is_object() && value.value("@meta", json::object()).value("class_name", "") == "File")
        paths.push_back(value.at("path").get<std::string>());
    if (value.is_structured()) {
        for (const json& part : value) {
            for (std::string& path : pathsIn(part))
                paths.push_back(std::move(path));
        }
    }
    return paths;
}

TEST_F(ForeignPaths, AWindowsProjectKeepsItsPathsInAnotherFolder) {
    ASSERT_TRUE(QDir(m_folder.path()).mkpath("from/here"));
    ASSERT_TRUE(QDir(m_folder.path()).mkpath("to"));
    const QByteArray files = "<file type='ObjectRef' value='21'/><second type='ObjectRef' value='22'/>"
                             "<third type='ObjectRef' value='23'/>";
    const auto file = [](const QByteArray& id, const QByteArray& path) {
        return "<RootObject type='File' objectId='" + id + "'><path type='String' value='" + path +
               "'/></RootObject>";
    };
    QByteArray text = archive(file("21", "C:/Users/me/clip.mp4") +
                              file("22", "\\\\server\\share\\music.mp3") + file("23", "near.mp4"));
    text.replace("<name type='String' value='Beach'/>", "<name type='String' value='Beach'/>" + files);
    write("from/here/film.xml", text);
    const Outcome outcome = run({"migrate", "from/here/film.xml", "-o", "to/film.json", "--to", "70"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_EQ(pathsIn(json::parse(read("to/film.json").toStdString())),
              (std::vector<std::string>{"C:/Users/me/clip.mp4", "//server/share/music.mp3",
                                        "../from/here/near.mp4"}));

    // The same for a project that is JSON already.
    const Outcome again = run({"migrate", "to/film.json", "-o", "from/film.json"});
    ASSERT_EQ(again.exitCode, 0) << again.err.toStdString();
    EXPECT_EQ(
        pathsIn(json::parse(read("from/film.json").toStdString())),
        (std::vector<std::string>{"C:/Users/me/clip.mp4", "//server/share/music.mp3", "here/near.mp4"}));
}

} // namespace
