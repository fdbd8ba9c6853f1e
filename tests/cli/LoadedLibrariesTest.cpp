// Qt Gui, X11 and OpenGL take most of the time that the program needs to start. They are loaded only for a project with
// a drawing.

#include "support/Paths.h"
#include "support/ProgramTest.h"

#include <QRegularExpression>

#include <algorithm>
#include <filesystem>

using Tests::archive;
using Tests::migratedName;
using Tests::Outcome;

namespace {

const QStringList largeLibraries = {"libQt5Svg", "libQt5Widgets", "libQt5Gui", "libX11", "libGL", "drawings"};

/// A project with that drawing in a preset, of the version before colours moved into drawings.
QByteArray projectWith(const QByteArray& drawing) {
    return archive(
        "<RootObject type='Overlay::Preset' objectId='6'><items type='Array' size='1'>"
        "<Item type='Item' index='1'><Data type='Overlay::Item' objectId='7'><type type='int32_t' value='2'/>"
        "<outline type='Overlay::Outline' objectId='8'><color type='uint32_t' value='4279383126'/></outline>"
        "<text type='String' value='" +
            drawing + "'/></Data></Item></items></RootObject>",
        " schemaVersion='20'");
}

const QByteArray drawing = "&lt;svg width=\"9\"&gt;&lt;rect fill=\"red\"/&gt;&lt;/svg&gt;";

class LoadedLibrariesTest : public Tests::ProgramTest {
protected:
    /// Runs the program, and gives the libraries that it initialised: "libQt5Core", but not "libQt5Core.so.5".
    QStringList loadedBy(const QStringList& arguments, int exitCode = 0) const {
        const Outcome outcome = runAfter("export LD_DEBUG=files LD_DEBUG_OUTPUT=loaded; ", arguments);
        EXPECT_EQ(outcome.exitCode, exitCode) << outcome.err.toStdString();
        QStringList names;
        for (const QString& log : files().filter(QRegularExpression("^loaded"))) {
            auto line = QRegularExpression("calling init: .*/([^/]+?)\\.so").globalMatch(read(log));
            while (line.hasNext())
                names.append(line.next().captured(1));
            QFile::remove(path(log));
        }
        return names;
    }
};

/// The large ones among them, in the order above.
std::string largeOf(const QStringList& loaded) {
    QStringList large;
    std::copy_if(largeLibraries.begin(), largeLibraries.end(), std::back_inserter(large),
                 [&](const QString& name) { return loaded.contains(name); });
    return large.join(' ').toStdString();
}

TEST_F(LoadedLibrariesTest, OnlyADrawingNeedsTheLargeOnes) {
    write("drawn.xml", projectWith(drawing));
    const QStringList loaded = loadedBy({"migrate", "drawn.xml", "--to", "22", "-o", "drawn-22.xml"});
    EXPECT_EQ(largeOf(loaded), largeLibraries.join(' ').toStdString());
    const QByteArray repainted =
        "&lt;svg fill=&quot;#123456&quot; stroke=&quot;#123456&quot; width=&quot;9&quot;&gt;";
    EXPECT_TRUE(read("drawn-22.xml").contains(repainted)) << read("drawn-22.xml").toStdString();

    write("later.xml", read("drawn-22.xml"));
    write("plain.xml", archive("", " schemaVersion='3'"));
    for (const QStringList& arguments :
         {QStringList{"--version"}, QStringList{"migrate", "plain.xml"}, QStringList{"migrate", "later.xml"},
          QStringList{"info", "later.xml"}, QStringList{"verify", migratedName("plain")},
          QStringList{"timeline", "plain.xml"}}) {
        SCOPED_TRACE(arguments.join(' ').toStdString());
        const QStringList small = loadedBy(arguments);
        EXPECT_EQ(largeOf(small), "");
        EXPECT_TRUE(small.contains("libQt5Core")) << small.join(' ').toStdString();
    }
}

TEST_F(LoadedLibrariesTest, AProgramWithoutItsModuleSaysSoAtADrawing) {
    write("drawn.xml", projectWith(drawing));
    write("plain.xml", archive());
    // In a folder of its own, since the program looks for the module in "../lib" as well.
    const QString alone = path("bin/adaptors-alone");
    std::filesystem::create_directory(path("bin").toStdString());
    std::filesystem::copy(Tests::program(), alone.toStdString());

    const Outcome drawn = Tests::runCommand(alone, {"migrate", "drawn.xml"}, m_folder.path());
    EXPECT_EQ(drawn.exitCode, 13);
    EXPECT_TRUE(drawn.err.contains("V21_PresetTypeAdaptor: what converts drawings can't be loaded: "))
        << drawn.err.toStdString();
    EXPECT_TRUE(drawn.err.contains("/drawings.so: ")) << drawn.err.toStdString();
    EXPECT_FALSE(exists(migratedName("drawn")));

    const Outcome plain = Tests::runCommand(alone, {"migrate", "plain.xml"}, m_folder.path());
    EXPECT_EQ(plain.exitCode, 0) << plain.err.toStdString();
}

} // namespace
