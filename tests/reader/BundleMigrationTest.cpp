// A bundle, which is a project in a folder: some texts of titles are in side files.

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"
#include "Reader/Contents.h"
#include "support/Compare.h"
#include "support/Files.h"
#include "support/Findings.h"
#include "support/Holiday.h"
#include "support/Paths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <map>
#include <set>

using nlohmann::json;
using Reader::Document;
using Reader::MigrationReport;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Tests::clipNamed;
using Tests::ExpectedTimeline;
using Tests::Project;
using Tests::Result;
using Tests::Strings;

namespace {

constexpr int sampleVersion = 20;

// clang-format off
/// Only clips of type 4 move from the primary track to a new titles track, before the one in use. The two
/// upper levels of the latter have become tracks. The first track is that of the quizzes.
const std::vector<ExpectedTimeline> titlesCut = {
    {"Holiday", {8, 16, 16, 16, 16, 4, 1}, {
        {"Intro", 8, 0, 2000, 6, {}},
        {"Summer by the sea", 4, 2000, 4000, 1, {}},
        {"Beach", 1, 6000, 7000, 6, {}},
        {"Harbour", 2, 13000, 5000, 6, {}},
        {"Village", 64, 18000, 5000, 6, {}},
        {"The end", 4, 23000, 4000, 1, {}},
        {"Outro", 16, 27000, 3000, 6, {}},
        {"The old harbour", 4, 13500, 3000, 2, {}},
        {"Midday", 4, 14000, 2000, 3, {}},
        {"Look", 4, 15000, 1000, 4, {}},
        {"Compass", 4, 7000, 2000, 2, {}},
        {"Markup", 4, 9000, 1000, 4, {}},
        {"Blank", 4, 25000, 1000, 2, {}},
        {"Song", 3, 0, 30000, 5, {}},
        {"SimpleText", 4, 30000, 5000, 1, {}}, // in place of the last quiz
    }, {
        {"Transition::Crossfade", nullptr, "Beach"},
        {"Transition::Ripple", "Beach", "Harbour"},
    }},
    {"Village", {8, 16, 4, 1}, {
        {"Square", 1, 0, 2000, 3, {}},
        {"Welcome", 4, 2000, 1000, 1, {}},
        {"Church", 2, 3000, 2000, 3, {}},
    }, {}},
};
// clang-format on

/// The text of an item; only the type if the item holds SVG.
const std::map<std::string, Strings> titleTexts = {
    {"Intro", {"Sea & Sand Films"}},
    {"Summer by the sea",
     {"<html><body>\n<p align=\"center\"><span style=\"color:#ffffff;\">Summer by the sea</span></p>\n"
      "</body></html>\n"}},
    {"The end", {"Fin \xe2\x80\x93 \xc3\xa0 bient\xc3\xb4t <3"}},
    {"Outro", {"\xc2\xa9 1999"}},
    {"The old harbour", {"The old harbour <1924>"}},
    {"Midday", {"Midday", "SVG"}},
    {"Look", {"SVG", "Look!"}},
    {"Compass", {"SVG"}},
    {"Markup", {"Drawn with <svg>"}},
    {"Blank", {""}},
    {"Welcome", {"Welcome", "SVG"}},
};

/// Its colour is that of the item's former outline.
constexpr const char* sun =
    "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"100\" height=\"100\" fill=\"#ffcc00\" "
    "stroke=\"#ffcc00\"><defs><linearGradient id=\"gradient_solid_white_retain\"><stop offset=\"0\" "
    "stop-color=\"#ffffff\"/></linearGradient></defs><circle cx=\"50\" cy=\"50\" r=\"40\"/></svg>";

QString sampleFolder() {
    return QString::fromStdString((Tests::samplesFolder() / "holiday-v20-bundle").string());
}

QByteArray readFile(const QString& folder, const QString& name) {
    return QByteArray::fromStdString(Tests::readFile(QDir(folder).filePath(name).toStdString()));
}

/// The shape in a side file of the sample, with the colours that the migration adds.
QByteArray coloured(const QString& name, const QByteArray& before, const QByteArray& after) {
    QByteArray svg = readFile(sampleFolder(), name);
    EXPECT_EQ(svg.count(before), 1);
    return svg.replace(before, after);
}

std::string svgDifference(const QByteArray& expected, const QByteArray& actual) {
    QDomDocument first;
    QDomDocument second;
    if (!first.setContent(expected) || !second.setContent(actual))
        return "no SVG";
    return Tests::difference(first.documentElement(), second.documentElement());
}

/// Reads a project from a folder and saves it to another one. If that is empty, texts stay in the document.
Result migrated(const QByteArray& bytes, const QString& source, const QString& target = {},
                int to = Reader::currentVersion) {
    Reader::MigrationOptions options = Tests::optionsTo(to);
    options.sourceFiles = Reader::SideFiles(source);
    options.targetFiles = Reader::SideFiles(target);
    return Tests::migrated(bytes, options, !target.isEmpty());
}

Strings logOf(const MigrationReport& report) {
    Strings lines;
    for (const Reader::LogLine& line : report.log)
        lines.push_back(line.step + ": " + line.text);
    return lines;
}

/// The main quiz is a quiz only by the type of its clip: its preset has no type.
constexpr const char* untypedQuiz = "V40_RemoveQuizFromOverlayAdaptor: Need quiz overlay preset";

class BundleMigrationTest : public testing::Test {
protected:
    static QByteArray sample() { return readFile(sampleFolder(), QStringLiteral("holiday.xml")); }
    /// The sample at the newest version, with all texts in the document.
    static const Result& whole() {
        static const Result result = migrated(sample(), sampleFolder());
        return result;
    }
    static Project project() { return Project(whole().bytes); }

    QString folder() const { return m_folder.path(); }
    QStringList files() const { return QDir(folder()).entryList(QDir::Files, QDir::Name); }
    void write(const QString& name, const QByteArray& bytes) const {
        QFile file(QDir(folder()).filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

private:
    QTemporaryDir m_folder;
};

TEST_F(BundleMigrationTest, TheSampleHasNoFaults) {
    const Document document = Reader::parse(sample(), QStringLiteral("holiday"));
    EXPECT_EQ(document.version(), sampleVersion);
    EXPECT_THAT(Tests::linesOf(Reader::verify(document)), IsEmpty());
    std::set<QString> there;
    std::set<QString> declared;
    const QDomElement archive = document.xml().documentElement();
    for (QDomNode node = archive; !node.isNull(); node = Archive::Internal::nextInDocument(node, archive)) {
        const QDomElement e = node.toElement();
        const QString type = Archive::typeOf(e);
        if (type == QLatin1String("Predeclare"))
            declared.insert(Archive::valueOf(e, QStringLiteral("oid")));
        else if (type != QLatin1String("Predeclarator") && e.hasAttribute(QStringLiteral("objectId")))
            there.insert(e.attribute(QStringLiteral("objectId")));
    }
    EXPECT_FALSE(there.empty());
    EXPECT_EQ(there, declared);
    EXPECT_EQ(sample().count("type=\"FileContent\""), 5);
}

TEST_F(BundleMigrationTest, OnlyTheQuizWithoutATypeIsReported) {
    EXPECT_THAT(logOf(whole().report), ElementsAre(untypedQuiz));
    EXPECT_EQ(whole().report.from, sampleVersion);
    EXPECT_EQ(whole().report.to, Reader::currentVersion);
}

TEST_F(BundleMigrationTest, EveryClipIsOnceAtItsTimeOnItsTrack) {
    const Project film = project();
    for (const ExpectedTimeline& timeline : titlesCut) {
        SCOPED_TRACE(timeline.name);
        Tests::expectClips(film, timeline, sampleVersion);
        Tests::expectTransitions(film, timeline, sampleVersion);
    }
}

TEST_F(BundleMigrationTest, TimelinesKeepTheirLengths) {
    EXPECT_EQ(Tests::lengthOf(project(), "Holiday"), 35000);
    EXPECT_EQ(Tests::lengthOf(project(), "Village"), 5000);
}

TEST_F(BundleMigrationTest, TransitionsNoLongerReferToTheTitle) {
    const Project film = project();
    const auto halves = [&](const char* name) {
        const json& timing = Tests::timingOf(film, "Holiday", name);
        return std::make_pair(timing.at("transitionIn").get<int>(), timing.at("transitionOut").get<int>());
    };
    EXPECT_EQ(halves("Summer by the sea"), std::make_pair(0, 0));
    EXPECT_EQ(halves("Beach"), std::make_pair(500, 1000));
    EXPECT_EQ(halves("Harbour"), std::make_pair(1000, 0));
}

TEST_F(BundleMigrationTest, TitlesKeepTheirTexts) {
    const Project film = project();
    for (const auto& [name, expected] : titleTexts) {
        Strings texts = Tests::textsOf(film, clipNamed(film, name));
        for (std::string& text : texts) {
            if (text.starts_with("<svg") || text.starts_with("<?xml"))
                text = "SVG";
        }
        EXPECT_EQ(texts, expected) << name;
    }
}

TEST_F(BundleMigrationTest, IntroAndOutroHaveALength) {
    const Project film = project();
    for (const char* name : {"Intro", "Outro"})
        EXPECT_EQ(clipNamed(film, name).at("unlimitedDuration"), false) << name;
    EXPECT_EQ(clipNamed(film, "The end").at("unlimitedDuration"), true);
}

TEST_F(BundleMigrationTest, PresetsHaveTheirTypesAndItemsTheirFeatures) {
    const Project film = project();
    for (const auto& [name, texts] : titleTexts) {
        const bool isCallout = name == "Look";
        const json& preset = film.follow(clipNamed(film, name), "overlay");
        EXPECT_EQ(preset.at("type"), isCallout ? 2 : 1) << name;
        ASSERT_EQ(preset.at("items").size(), texts.size()) << name;
        for (std::size_t n = 0; n < texts.size(); ++n) {
            const bool isSvg = texts[n] == "SVG";
            const json& item = film.follow(preset.at("items").at(n));
            EXPECT_EQ(item.at("type"), isSvg ? 2 : 1) << name;
            EXPECT_EQ(item.at("features"), isSvg && isCallout ? 1 : 0) << name;
            // The colour has moved into the text, except for callouts.
            EXPECT_EQ(film.follow(item, "outline").at("color"), isSvg && !isCallout ? 0 : 4278190080U)
                << name;
        }
    }
}

TEST_F(BundleMigrationTest, ItemsHaveAnEnvelopeAndAShadow) {
    const Project film = project();
    for (const auto& [name, texts] : titleTexts) {
        for (const json& reference : film.follow(clipNamed(film, name), "overlay").at("items")) {
            const json& item = film.follow(reference);
            const json& shadow = film.follow(item, "dropShadow");
            EXPECT_EQ(Project::classOf(shadow), "Overlay::DropShadow");
            EXPECT_EQ(shadow.at("enabled"), false);
            EXPECT_EQ(shadow.at("color"), 3024043839U);
            EXPECT_EQ(shadow.at("offsetX"), 4);
            EXPECT_EQ(shadow.at("offsetY"), 4);
            EXPECT_EQ(shadow.at("blurRadius"), 1);
            const json& envelope = film.follow(item, "envelope");
            EXPECT_EQ(Project::classOf(envelope), "TransformationEnvelope");
            EXPECT_EQ(envelope.at("keyValues"), json::array());
            const json& pose = film.follow(envelope, "defaultValue");
            EXPECT_EQ(pose.at("opacity"), 100);
            const json& matrix = film.follow(pose, "matrix");
            EXPECT_EQ(matrix.at("m11"), 1.0);
            EXPECT_EQ(matrix.at("m21"), 0.0);
        }
    }
}

TEST_F(BundleMigrationTest, NoQuizIsLeft) {
    std::set<std::string> lost;
    for (const Reader::Loss& loss : whole().report.losses) {
        EXPECT_TRUE(loss.isIntended) << loss.part.className << ' ' << loss.part.id << ": " << loss.reason;
        if (loss.part.kind == Reader::PartKind::Clip)
            lost.insert(loss.part.name);
    }
    EXPECT_EQ(lost, std::set<std::string>({"Where was the boat?", "Church quiz"}));
    const Project film = project();
    for (const auto& [id, object] : film.objects()) {
        EXPECT_FALSE(Project::classOf(object).starts_with("Quiz::"));
        if (Project::classOf(object) == "Timeline::Clip") {
            EXPECT_NE(object.at("type"), 32);
            EXPECT_EQ(object.at("quiz"), nullptr);
        }
    }
    const Strings filler = Tests::textsOf(film, clipNamed(film, "SimpleText"));
    ASSERT_EQ(filler.size(), 1u);
    EXPECT_EQ(filler.front().size(), 612u);
    EXPECT_THAT(filler.front(), HasSubstr(">Quiz</span>"));
}

// The step that removes quizzes from overlays needs the text of the question, which is in a side file.
TEST_F(BundleMigrationTest, QuizzesAreSeparateObjectsBetweenVersions) {
    const Result result = migrated(sample(), sampleFolder(), {}, 40);
    const Document document = Reader::parse(result.bytes, QStringLiteral("holiday"));
    std::map<QString, QDomElement> objects;
    std::map<QString, QDomElement> clips;
    for (const QDomElement& e : Archive::Internal::elements(document.xml(), QStringLiteral("RootObject"))) {
        objects[e.attribute(QStringLiteral("objectId"))] = e;
        if (Archive::typeOf(e) == QLatin1String("Timeline::Clip"))
            clips[Archive::valueOf(e, QStringLiteral("name"))] = e;
    }
    const QDomElement untyped = clips.at(QStringLiteral("Where was the boat?"));
    const QDomElement typed = clips.at(QStringLiteral("Church quiz"));
    for (const QDomElement& clip : {untyped, typed})
        EXPECT_EQ(Archive::valueOf(clip, QStringLiteral("overlay")), "0");
    EXPECT_EQ(Archive::valueOf(untyped, QStringLiteral("quiz")), "0");
    const QDomElement quiz = objects.at(Archive::valueOf(typed, QStringLiteral("quiz")));
    EXPECT_EQ(Archive::typeOf(quiz), "Quiz::Preset");
    EXPECT_EQ(Archive::valueOf(quiz, QStringLiteral("tag")), "Quiz");
    const auto questions = Archive::Internal::elements(quiz, QStringLiteral("Data"));
    ASSERT_EQ(questions.size(), 1u);
    EXPECT_EQ(Archive::valueOf(questions.front(), QStringLiteral("question")), "How old is the church?");
}

TEST_F(BundleMigrationTest, NoReferenceIsDanglingAndNoIdIsDuplicate) {
    const Project film = project();
    EXPECT_THAT(Tests::linesOf(Reader::verify(film.document())), IsEmpty());
    EXPECT_THAT(whole().report.duplicateIds, IsEmpty());
}

// Numbered in the order of the items' ids, which is that of the clips in the archive; texts stay.
TEST_F(BundleMigrationTest, SvgTextsAreSavedBesideTheDocument) {
    const Result result = migrated(sample(), sampleFolder(), folder());
    EXPECT_THAT(logOf(result.report), ElementsAre(untypedQuiz));
    const Project film(result.bytes);
    const auto fieldOf = [&](const char* clip, std::size_t n) -> std::string {
        return film.follow(film.follow(clipNamed(film, clip), "overlay").at("items").at(n)).at("encodedText");
    };
    EXPECT_EQ(fieldOf("Welcome", 1), "content_1.svg");
    EXPECT_EQ(fieldOf("Midday", 1), "content_2.svg");
    EXPECT_EQ(fieldOf("Look", 0), "content_3.svg");
    EXPECT_EQ(fieldOf("Compass", 0), "content_4.svg");
    EXPECT_EQ(fieldOf("Look", 1), QByteArray("Look!").toBase64().toStdString());
    EXPECT_EQ(fieldOf("Markup", 0), QByteArray("Drawn with <svg>").toBase64().toStdString());
    EXPECT_EQ(result.bytes.count("content_"), 4);

    EXPECT_EQ(files(), QStringList({"content_1.svg", "content_2.svg", "content_3.svg", "content_4.svg"}));
    // A gradient is not replaced by the colour; a callout keeps its text unchanged.
    EXPECT_EQ(svgDifference(coloured("content_3.svg", "fill=\"url(#cloth)\"",
                                     "fill=\"url(#cloth)\" stroke=\"#204080\""),
                            readFile(folder(), "content_1.svg")),
              "");
    EXPECT_EQ(svgDifference(sun, readFile(folder(), "content_2.svg")), "");
    EXPECT_EQ(readFile(folder(), "content_3.svg"), readFile(sampleFolder(), "content_2.svg"));
    EXPECT_EQ(
        svgDifference(coloured("content_1.svg", "fill=\"#000000\"", "fill=\"#008040\" stroke=\"#008040\""),
                      readFile(folder(), "content_4.svg")),
        "");
    EXPECT_TRUE(readFile(folder(), "content_4.svg").startsWith("<?xml"));
}

TEST_F(BundleMigrationTest, TheSavedBundleReadAgainIsTheSameProject) {
    const Result saved = migrated(sample(), sampleFolder(), folder());
    const Result again = migrated(saved.bytes, folder());
    EXPECT_THAT(again.report.log, IsEmpty());
    EXPECT_EQ(again.bytes, whole().bytes);

    const QTemporaryDir other;
    EXPECT_EQ(migrated(saved.bytes, folder(), other.path()).bytes, saved.bytes);
    ASSERT_EQ(QDir(other.path()).entryList(QDir::Files, QDir::Name), files());
    for (const QString& name : files())
        EXPECT_EQ(readFile(other.path(), name), readFile(folder(), name)) << name.toStdString();
}

TEST_F(BundleMigrationTest, ATextWhoseFileCannotBeWrittenStaysInTheDocument) {
    write(QStringLiteral("content_2.svg"), "of another project");
    const Result saved = migrated(sample(), sampleFolder(), folder());
    EXPECT_THAT(logOf(saved.report),
                ElementsAre(untypedQuiz,
                            "OverlayFileContentWriteAdaptor: side file \"content_2.svg\": exists already, so "
                            "the text stays in the document"));
    EXPECT_EQ(files(), QStringList({"content_1.svg", "content_2.svg", "content_3.svg", "content_4.svg"}));
    EXPECT_EQ(readFile(folder(), "content_2.svg"), "of another project");
    EXPECT_EQ(saved.bytes.count("content_"), 3);
    EXPECT_EQ(saved.bytes.count("content_2.svg"), 0);
    EXPECT_EQ(migrated(saved.bytes, folder()).bytes, whole().bytes);
}

TEST_F(BundleMigrationTest, ATextWhoseFileIsMissingIsReadAsEmpty) {
    for (const char* name : {"content_1.svg", "content_3.svg", "content_4.html", "content_5.quiz"})
        write(QString::fromLatin1(name), readFile(sampleFolder(), QString::fromLatin1(name)));
    const Result result = migrated(sample(), folder());
    EXPECT_THAT(
        logOf(result.report),
        ElementsAre("OverlayFileContentReadAdaptor: side file \"content_2.svg\": missing", untypedQuiz));
    const Project film(result.bytes);
    EXPECT_THAT(Tests::textsOf(film, clipNamed(film, "Look")), ElementsAre("", "Look!"));
    for (const ExpectedTimeline& timeline : titlesCut)
        Tests::expectClips(film, timeline, sampleVersion);
}

TEST_F(BundleMigrationTest, StoppingAtAnyVersionGivesTheSameProject) {
    const json atOnce = Tests::renumbered(whole().bytes);
    for (const int stop : {sampleVersion, 21, 25, 38, 40, 50, 62, 63, 69, Reader::currentVersion}) {
        const QTemporaryDir halfway;
        const Result half = migrated(sample(), sampleFolder(), halfway.path(), stop);
        // An archive contains its texts.
        EXPECT_EQ(QDir(halfway.path()).entryList(QDir::Files).size(), stop > 62 ? 4 : 0)
            << "stopped at " << stop;
        const Result rest = migrated(half.bytes, halfway.path());
        EXPECT_EQ(Tests::difference(atOnce, Tests::renumbered(rest.bytes)), "") << "stopped at " << stop;
    }
}

} // namespace
