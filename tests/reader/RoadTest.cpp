#include "Reader/Road.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"
#include "support/Compare.h"
#include "support/Files.h"
#include "support/Film.h"
#include "support/Findings.h"
#include "support/Paths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QByteArray>
#include <QDomDocument>
#include <QSet>

#include <algorithm>
#include <map>
#include <set>
#include <vector>

using nlohmann::json;
using Reader::Document;
using Reader::Journey;
using Reader::Report;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using Tests::always;
using Tests::clipNamed;
using Tests::expectClips;
using Tests::ExpectedClip;
using Tests::ExpectedTimeline;
using Tests::expectTransitions;
using Tests::Project;
using Tests::reelVersion;
using Tests::sinceCollections;
using Tests::sinceQuizzes;
using Tests::sinceScenes;
using Tests::Strings;
using Tests::textsOf;
using Tests::timingOf;

namespace {

enum class Cut { Short, Long };

/// A sample: one film in two cuts, as the editor saved it at a schema version.
struct Sample {
    const char* file;
    int version;
    bool isXml;
    Cut cut;
};

constexpr Sample samples[] = {
    {"holiday-v3.xml", 3, true, Cut::Long},     {"holiday-v12.xml", 12, true, Cut::Long},
    {"holiday-v21.xml", 21, true, Cut::Long},   {"holiday-v27.xml", 27, true, Cut::Short},
    {"holiday-v34.xml", 34, true, Cut::Long},   {"holiday-v45.xml", 45, true, Cut::Long},
    {"holiday-v55.xml", 55, true, Cut::Long},   {"holiday-v60.json", 60, false, Cut::Long},
    {"holiday-v62.xml", 62, true, Cut::Short},  {"holiday-v63.json", 63, false, Cut::Short},
    {"holiday-v70.json", 70, false, Cut::Long}, {"holiday-v76.json", 76, false, Cut::Long},
};

QByteArray bytesOf(const Sample& sample) {
    return QByteArray::fromStdString(Tests::readFile(Tests::samplesFolder() / sample.file));
}

Journey journeyTo(int version) {
    Journey journey;
    journey.name = QStringLiteral("holiday");
    journey.location = journey.target = QStringLiteral("holiday");
    journey.to = version;
    return journey;
}

struct Result {
    QByteArray bytes;
    Report report;
};

Result migrated(const QByteArray& bytes, int to = Reader::currentVersion) {
    Document document = Reader::parse(bytes, QStringLiteral("holiday"));
    const Journey journey = journeyTo(to);
    Result result;
    result.report = Reader::migrate(document, journey);
    result.bytes = Reader::save(std::move(document), journey, result.report).bytes;
    return result;
}

// clang-format off
/// Track types are 1 for the primary track, 4 for sound, 8 for pictures over it, 16 for titles.
const std::vector<ExpectedTimeline> shortCut = {
    {"Holiday", {8, 16, 16, 16, 8, 4, 1}, {
        {"Summer by the sea", 4, 0, 4000, 1, {}},
        {"Beach", 1, 4000, 7000, 6, {"Blur", "AddNoize"}},
        {"Harbour", 2, 11000, 5000, 6, {}},
        {"Boat", 1, 16000, 12000, 6, {"Sharpen"}},
        {"The old harbour", 4, 11500, 3000, 3, {}},
        {"Song", 3, 0, 28000, 5, {}},
    }, {{"Transition::Fade", "Beach", "Harbour"}}},
};

/// The titles track was in use, so that the titles of the primary track have one of their own before it. Its four
/// levels, and those of the pictures, have become tracks; those of the sound share theirs.
const std::vector<ExpectedTimeline> longCut = {
    {"Holiday", {8, 16, 16, 16, 16, 16, 8, 8, 8, 8, 4, 1}, {
        {"Summer by the sea", 4, 0, 4000, 1, {}},
        {"Beach", 1, 4000, 7000, 11, {"Blur", "AddNoize"}},
        {"Harbour", 2, 11000, 5000, 11, {"Crop"}},
        {"Boat", 1, 16000, 12000, 11, {"Sharpen", "Transpose", "Mask"}},
        {"Lighthouse", 1, 28000, 6000, 11, {"MagicEnhance", "WhiteBalance", "ManualEnhance"}},
        {"Village", 0, 34000, 5000, 11, {}},
        {"Sunset", 1, 39000, 4000, 11, {"PopArt", "Lut"}},
        {"Default name", 4, 43000, 750, 1, {}},
        {"SimpleText", 4, 43750, 5000, 1, {}, sinceQuizzes},
        {"The old harbour", 4, 11500, 3000, 2, {}},
        {"Fishermen", 4, 12000, 1500, 3, {}},
        {"Midday", 4, 12500, 2000, 4, {}},
        {"Look", 4, 17000, 1000, 5, {}},
        {"Inset", 1, 5000, 2000, 6, {"PictureInPicture"}},
        {"Green screen", 1, 12000, 3000, 7, {"ChromaKey", "PictureInPicture"}},
        {"Split", 1, 17000, 2000, 8, {"SideBySide"}},
        {"Aside", 2, 20000, 1000, 9, {}},
        {"Song", 3, 0, 40000, 10, {"AudioEqualizer", "AudioNoiseSuppress"}},
        {"Waves", 3, 4000, 9000, 10, {"AudioNormalize"}},
        {"Narration", 3, 29000, 4000, 10, {"AudioNoiseGate"}},
        {"Gulls", 3, 5000, 3000, 10, {"AudioPhone", "AudioPitch"}},
        {"Dunes", 1, 21000, 500, 9, {"Blur", "Erosion", "FindEdges", "HalfTone", "MotionBlur", "TiltShift"}, always, true},
        {"Rain", 1, 21500, 500, 9, {"Erosion", "Blur", "FindEdges", "HalfTone", "MotionBlur", "TiltShift", "AddNoize", "Sharpen"}, always, true},
        {"Pier", 1, 22000, 500, 9, {"PopArt"}, always, true},
        {"Dock", 1, 22500, 500, 9, {"PopArt"}, always, true},
        {"Mole", 1, 23000, 500, 9, {"", "PopArt"}, always, true}, // a second zoom goes, and its entry stays
        {"Lamp", 1, 23500, 500, 9, {"AddNoize"}, always, true}, // the later clip alone keeps a shared enhancement
        {"Lens", 1, 24000, 500, 9, {"Sharpen", "MagicEnhance", "AutoContrast", "AutoSaturation", "WhiteBalance", "ManualEnhance"}, always, true},
        {"Fog", 1, 24500, 500, 9, {""}, always, true}, // an enhancement without a flag goes, and its entry stays
        {"Keyhole", 1, 25000, 500, 9, {"Mask"}, always, true},
        {"Porthole", 1, 25500, 500, 9, {"Mask"}, always, true},
        {"Window", 1, 26000, 500, 9, {"PictureInPicture", "ChromaKey", "PictureInPicture"}, always, true},
        {"Door", 1, 26500, 500, 9, {"ChromaKey", "PictureInPicture", "PictureInPicture"}, always, true},
        {"Twins", 1, 27000, 500, 9, {"SideBySide", "SideBySide"}, always, true},
        {"Tide", 1, 27500, 500, 9, {"SideBySide", "Crop"}, always, true},
        {"Gulf", 1, 28000, 500, 9, {"Transpose"}, always, true},
        {"Upright", 1, 28500, 500, 9, {}, always, true},
        {"Cave", 3, 21000, 500, 10, {"AudioEcho", "AudioReverberation", "AudioMuffle", "AudioNoiseSuppress", "AudioNoiseSuppress"}, always, true},
        {"Ship to shore", 3, 21500, 500, 10, {"AudioNormalize", "AudioNoiseSuppress", "AudioEqualizer", "AudioRadio", "AudioPhone", "AudioPitch"}, always, true},
        {"Puppets", 3, 22000, 500, 10, {"AudioPitch", "AudioPitch", "AudioPhone", "AudioEcho", "AudioReverberation", "AudioMuffle", "AudioRadio", "AudioNoiseSuppress"}, always, true},
    }, {
        {"Transition::Crossfade", nullptr, "Beach"}, // from a title, which has moved away
        {"Transition::Ripple", "Beach", "Harbour"},
        {"Transition::DirectCrossFade", "Boat", "Lighthouse"},
        {"Transition::Blinds", "Sunset", nullptr},
    }},
    {"Village", {8, 16, 8, 4, 1}, {
        {"Square", 1, 0, 2000, 4, {}},
        {"Welcome", 4, 2000, 1000, 1, {}},
        {"Church", 2, 3000, 2000, 4, {}},
        {"Intro", 8, 0, 1000, 2, {}},
    }, {{"Transition::Crossfade", "Square", nullptr, 22}}, sinceScenes},
};

const std::map<std::string, std::string> titleTexts = {
    {"Summer by the sea", "Summer by the sea"},
    {"The old harbour", "The old harbour <1924>"},
    {"Fishermen", "Fishermen & boats"},
    {"Welcome", "Welcome"},
    {"Default name", ""},
};
// clang-format on

const std::vector<ExpectedTimeline>& filmOf(const Sample& sample) {
    return sample.cut == Cut::Short ? shortCut : longCut;
}

/// An effect of a clip, by its class.
const json& effectOf(const Project& project, const std::string& clip, const std::string& className) {
    for (const json& effect : clipNamed(project, clip).at("effects")) {
        if (Project::classOf(project.follow(effect)) == "Effect::" + className)
            return project.follow(effect);
    }
    throw std::runtime_error("no " + className + " on " + clip);
}

double intensityOf(const Project& project, const std::string& clip, const std::string& className) {
    return project.innermost(effectOf(project, clip, className)).at("intensity").get<double>();
}

std::vector<double> matrixOf(const Project& project, const json& holder, const std::string& key) {
    const json& matrix = project.follow(holder, key);
    std::vector<double> numbers;
    for (const char* name : {"m11", "m12", "m13", "m21", "m22", "m23", "m31", "m32", "m33"})
        numbers.push_back(matrix.at(name).get<double>());
    return numbers;
}

class RoadTest : public testing::TestWithParam<Sample> {
protected:
    static void SetUpTestSuite() { Reader::useStandInFolders(); }

    static bool isLong() { return GetParam().cut == Cut::Long; }
    static int version() { return GetParam().version; }

    /// The sample at the newest version.
    static const Result& result() {
        static std::map<std::string, Result> results;
        const auto found = results.find(GetParam().file);
        return found != results.end()
                   ? found->second
                   : results.emplace(GetParam().file, migrated(bytesOf(GetParam()))).first->second;
    }
    static Project project() { return Project(result().bytes); }
};

TEST_P(RoadTest, RunsTheStepsOfTheTableInItsOrder) {
    Strings expected;
    Strings passedBy;
    for (const Reader::Step& step : Reader::chain()) {
        if (step.number <= version())
            continue;
        const bool runs =
            GetParam().isXml && step.number <= Reader::lastXmlVersion ? step.hasXml() : step.hasJson();
        (runs ? expected : passedBy).emplace_back(step.className);
    }
    EXPECT_EQ(result().report.steps, expected);
    EXPECT_EQ(result().report.skipped, passedBy);
    EXPECT_EQ(result().report.from, version());
    EXPECT_EQ(result().report.to, Reader::currentVersion);
}

TEST_P(RoadTest, ReportsTheArchiveStepThatJsonBelow62PassesBy) {
    if (!GetParam().isXml && version() < 62)
        EXPECT_THAT(result().report.skipped, ElementsAre("V62_CollectionItemPayloadAdaptor"));
    else
        EXPECT_THAT(result().report.skipped, IsEmpty());
}

TEST_P(RoadTest, LogsNothing) {
    for (const Reader::LogLine& line : result().report.log)
        ADD_FAILURE() << line.step << ": " << line.severity << ' ' << line.text;
}

TEST_P(RoadTest, EveryClipIsOnceAtItsTimeOnItsTrackWithItsEffects) {
    const Project film = project();
    for (const ExpectedTimeline& timeline : filmOf(GetParam())) {
        if (version() < timeline.since)
            continue;
        SCOPED_TRACE(timeline.name);
        expectClips(film, timeline, version());
    }
}

TEST_P(RoadTest, OnlyQuizzesAreLost) {
    std::set<std::string> lost;
    for (const Reader::Clip& clip : result().report.lostClips)
        lost.insert(clip.name);
    const bool hasQuizzes = isLong() && version() >= sinceQuizzes && version() < 69;
    EXPECT_EQ(lost, hasQuizzes ? std::set<std::string>({"Where was the boat?", "Church quiz"})
                               : std::set<std::string>());
}

TEST_P(RoadTest, TransitionsJoinTheirClips) {
    const Project film = project();
    for (const ExpectedTimeline& timeline : filmOf(GetParam())) {
        if (version() >= timeline.since)
            expectTransitions(film, timeline, version());
    }
    const std::string second = isLong() ? "Boat" : "Beach";
    const auto half = isLong() ? 400 : 1000;
    EXPECT_EQ(timingOf(film, "Holiday", second).at("transitionOut"), half);
    EXPECT_EQ(timingOf(film, "Holiday", isLong() ? "Lighthouse" : "Harbour").at("transitionIn"), half);
    EXPECT_EQ(timingOf(film, "Holiday", "Summer by the sea").at("transitionOut"), 0);
    if (!isLong())
        return;
    EXPECT_EQ(timingOf(film, "Holiday", "Beach").at("transitionIn"), 500);
    EXPECT_EQ(timingOf(film, "Holiday", "Beach").at("transitionOut"), 1000);
    EXPECT_EQ(timingOf(film, "Holiday", "Harbour").at("transitionIn"), 1000);
    EXPECT_EQ(timingOf(film, "Holiday", "Sunset").at("transitionOut"), 750);
    EXPECT_EQ(timingOf(film, "Holiday", "Aside").at("transitionOut"), 0);
    EXPECT_EQ(timingOf(film, "Holiday", "Beach").at("sourcePosition"), 500);
    EXPECT_EQ(timingOf(film, "Holiday", "Harbour").at("sourcePosition"), 1500);
}

TEST_P(RoadTest, TimelinesKeepTheirLengths) {
    const Project film = project();
    if (!isLong()) {
        EXPECT_EQ(Tests::lengthOf(film, "Holiday"), 28000);
    } else {
        EXPECT_EQ(Tests::lengthOf(film, "Holiday"), version() < sinceQuizzes ? 43750 : 48750);
    }
    if (isLong() && version() >= sinceScenes) {
        EXPECT_EQ(Tests::lengthOf(film, "Village"), 5000);
    }
}

TEST_P(RoadTest, TracksSayWhatTheyAre) {
    const Project film = project();
    const json& timeline = film.timeline("Holiday");
    for (const json& reference : timeline.at("tracks")) {
        const json& track = film.follow(reference);
        EXPECT_EQ(Project::classOf(track), "Timeline::Track");
        EXPECT_EQ(Serialize::Json::getAnyObjectId(track.at("timeline")),
                  Serialize::Json::getObjectId(timeline));
        // Titles have left gaps on the primary track.
        EXPECT_EQ(track.at("gapless"), false);
    }
    for (const json* timing : film.all("Timeline::ClipTiming")) {
        EXPECT_FALSE(timing->contains("trackLevel"));
        EXPECT_FALSE(timing->contains("transitionDuration"));
        EXPECT_FALSE(timing->contains("transitionHalf"));
        EXPECT_TRUE(timing->contains("fadeInDuration"));
        EXPECT_TRUE(timing->contains("fadeOutDuration"));
        EXPECT_FALSE(timing->contains("fadeInDuraion"));
    }
}

TEST_P(RoadTest, TitlesKeepTheirTexts) {
    const Project film = project();
    std::size_t met = 0;
    for (const ExpectedTimeline& timeline : filmOf(GetParam())) {
        for (const ExpectedClip& clip : timeline.clips) {
            const auto text = titleTexts.find(clip.name);
            if (version() < timeline.since || !isThere(clip, version()) || text == titleTexts.end())
                continue;
            EXPECT_THAT(textsOf(film, clipNamed(film, clip.name)), ElementsAre(text->second));
            ++met;
        }
    }
    EXPECT_GE(met, 2u);
    if (!isLong())
        return;
    Strings midday = textsOf(film, clipNamed(film, "Midday"));
    ASSERT_EQ(midday.size(), 2u);
    EXPECT_THAT(midday, Contains("Midday"));
    EXPECT_THAT(midday, Contains(testing::HasSubstr("gradient_solid_white_retain")));
    EXPECT_THAT(midday, Contains(testing::HasSubstr("<circle")));
    EXPECT_THAT(textsOf(film, clipNamed(film, "Look")), Contains("Look!"));
    if (version() >= sinceQuizzes) {
        EXPECT_THAT(textsOf(film, clipNamed(film, "SimpleText")), Contains(testing::HasSubstr("Quiz")));
    }
}

TEST_P(RoadTest, OverlaysAreOfTheNewPresetType) {
    if (!isLong())
        return;
    if (version() < 21 && !Reader::findStep("V21_PresetTypeAdaptor"))
        GTEST_SKIP() << "the step that gives overlays their type is not there";
    const Project film = project();
    const json& callout = film.follow(clipNamed(film, "Look"), "overlay");
    EXPECT_EQ(callout.at("type"), 2);
    EXPECT_EQ(film.follow(callout.at("items").at(0)).at("type"), 2);
    EXPECT_EQ(film.follow(callout.at("items").at(0)).at("features"), 1);
    const json& label = film.follow(clipNamed(film, "Midday"), "overlay");
    EXPECT_EQ(label.at("type"), 1);
    for (const json& reference : label.at("items")) {
        const json& item = film.follow(reference);
        if (item.at("type") != 2)
            continue;
        EXPECT_EQ(film.follow(item, "outline").at("color"), 0);
        const std::string encoded = item.at("encodedText");
        const std::string svg = QByteArray::fromBase64(QByteArray::fromStdString(encoded)).toStdString();
        EXPECT_THAT(svg, testing::HasSubstr("fill=\"#ffcc00\""));
        EXPECT_THAT(svg, testing::HasSubstr("stroke=\"#ffcc00\""));
    }
}

TEST_P(RoadTest, OverlayItemsAreComplete) {
    const Project film = project();
    ASSERT_FALSE(film.all("Overlay::Item").empty());
    for (const json* item : film.all("Overlay::Item")) {
        for (const char* key : {"encodedText", "dropShadow", "transform", "outline", "resourcesInfo"})
            EXPECT_TRUE(item->contains(key)) << key;
        EXPECT_FALSE(item->contains("text"));
        EXPECT_TRUE(film.follow(*item, "outline").contains("enabled"));
    }
    for (const json* preset : film.all("Overlay::Preset")) {
        EXPECT_EQ(preset->at("fontsDir"), "");
        EXPECT_FALSE(preset->contains("quiz") && !preset->at("quiz").is_null());
    }
}

TEST_P(RoadTest, EffectsKeepTheirStrength) {
    const Project film = project();
    EXPECT_DOUBLE_EQ(intensityOf(film, "Beach", "Blur"), 5);
    EXPECT_DOUBLE_EQ(intensityOf(film, "Beach", "AddNoize"), 0.5);
    EXPECT_DOUBLE_EQ(intensityOf(film, "Boat", "Sharpen"), 0.75);
    if (!isLong())
        return;
    EXPECT_EQ(effectOf(film, "Boat", "Transpose").at("angle"), 90);
    EXPECT_EQ(effectOf(film, "Sunset", "PopArt").at("preset"), 1);
    const json& enhance = effectOf(film, "Lighthouse", "ManualEnhance");
    const std::map<std::string, double> colours = {
        {"brightness", 0.2}, {"contrast", -0.5}, {"gamma", 0.5}, {"hue", 0}, {"saturation", -1}};
    for (const auto& [name, value] : colours)
        EXPECT_DOUBLE_EQ(enhance.at(name).get<double>(), value) << name;
    if (version() < sinceQuizzes)
        return;
    EXPECT_DOUBLE_EQ(intensityOf(film, "Narration", "AudioNoiseGate"), 0.75);
    EXPECT_DOUBLE_EQ(intensityOf(film, "Gulls", "AudioPhone"), 0.67);
    EXPECT_DOUBLE_EQ(intensityOf(film, "Gulls", "AudioPitch"), 0.5);
    EXPECT_DOUBLE_EQ(effectOf(film, "Gulls", "AudioPitch").at("pitch").get<double>(), 1.5);
}

TEST_P(RoadTest, EffectsArePlacedByMatrices) {
    if (!isLong())
        return;
    const Project film = project();
    EXPECT_THAT(matrixOf(film, effectOf(film, "Inset", "PictureInPicture"), "transform"),
                ElementsAre(0.5, 0, 0, 0, 0.5, 0, 0.25, 0.25, 1));
    EXPECT_THAT(matrixOf(film, effectOf(film, "Green screen", "PictureInPicture"), "transform"),
                ElementsAre(1, 0, 0, 0, 1, 0, 0, 0, 1));
    EXPECT_THAT(matrixOf(film, effectOf(film, "Harbour", "Crop"), "transform"),
                ElementsAre(2, 0, 0, 0, 1, 0, 0.5, 0, 1));
    for (const char* side : {"transformSrc", "transformDst"})
        EXPECT_THAT(matrixOf(film, effectOf(film, "Split", "SideBySide"), side),
                    ElementsAre(1, 0, 0, 0, 0.5, 0, 0, -0.25, 1));
    const json& mask = effectOf(film, "Boat", "Mask");
    EXPECT_EQ(mask.at("backgroundFill"), 1);
    EXPECT_EQ(mask.at("backgroundOpacity"), 0.5);
    EXPECT_EQ(mask.at("backgroundSmoothness"), 0.25);
    ASSERT_EQ(mask.at("highlightFrames").size(), 1u);
    ASSERT_EQ(mask.at("concealFrames").size(), 1u);
    const json& bright = film.follow(film.follow(mask.at("highlightFrames").at(0)), "Effect::Frame");
    EXPECT_THAT(matrixOf(film, bright, "transform"), ElementsAre(0.5, 0, 0, 0, 1, 0, -0.25, 0, 1));
    const json& hidden = film.follow(film.follow(mask.at("concealFrames").at(0)), "Effect::Frame");
    EXPECT_THAT(matrixOf(film, hidden, "transform"), ElementsAre(0.5, 0, 0, 0, 0.5, 0, 0.25, 0.25, 1));
    EXPECT_EQ(hidden.at("shape"), 2);
    EXPECT_EQ(hidden.at("outline"), false);
}

TEST_P(RoadTest, ZoomsAreEnvelopesOfTheirClips) {
    if (!isLong())
        return;
    const Project film = project();
    const auto steps = [&](const char* clip) {
        std::vector<std::pair<double, double>> found; // with the enlargement
        for (const json& reference : film.follow(clipNamed(film, clip), "cropEnvelope").at("keyValues")) {
            const json& key = film.follow(reference);
            found.emplace_back(key.at("step").get<double>(),
                               matrixOf(film, film.follow(key, "value"), "matrix").front());
        }
        return found;
    };
    using Steps = std::vector<std::pair<double, double>>;
    EXPECT_EQ(steps("Harbour"), (Steps{{0.0625, 1}, {0.8125, 2}}));
    EXPECT_EQ(steps("Sunset"), (Steps{{0, 1}, {0.125, 2}, {0.375, 2}, {0.5, 1}}));
}

TEST_P(RoadTest, IdentifiersAreThoseOfTheEditor) {
    if (!isLong())
        return;
    const Project film = project();
    const auto uniqueId = [&](const char* clip, const char* className) -> std::string {
        return film.innermost(effectOf(film, clip, className)).at("uniqueId");
    };
    EXPECT_EQ(uniqueId("Beach", "Blur"), "d1e2a357-7d46-41c8-a6ba-6bccf926c77e");
    EXPECT_EQ(uniqueId("Green screen", "ChromaKey"), "a19188b6-c1fc-49e1-9395-8e8c2c17078b");
    EXPECT_EQ(uniqueId("Green screen", "PictureInPicture"), "bf86d91d-8347-4030-9e6c-2872dfcf1628");
    EXPECT_EQ(uniqueId("Boat", "Transpose"), "ca7a128c-90f0-4faf-afe2-1756a37379c8");
    EXPECT_EQ(uniqueId("Boat", "Mask"), "b1c2b46d-c898-4874-9619-a1c58992162c");
    EXPECT_EQ(uniqueId("Lighthouse", "ManualEnhance"), "7cbc055b-98bf-4fcc-be7d-f431a05e608a");
    EXPECT_EQ(uniqueId("Waves", "AudioNormalize"), "6c7a85ac-2a34-44a0-bd07-504f95370354");
    if (version() >= sinceQuizzes) {
        EXPECT_EQ(uniqueId("Gulls", "AudioPhone"), "7f10aa3a-79c9-4bdf-9a5c-7005690a961a");
        EXPECT_EQ(uniqueId("Gulls", "AudioPitch"), "342d639d-1182-4b70-b071-1831d484cb85");
    }
    const std::map<std::string, std::string> transitions = {
        {"Transition::Crossfade", "a0476d04-6c9e-4e8f-a0d7-b8365c8fad40"},
        {"Transition::Ripple", "7876b484-a122-4935-b99e-874e8021709a"},
        {"Transition::DirectCrossFade", "b95596a6-823c-4810-ac9a-8865952a21df"},
        {"Transition::Blinds", "5aa22a87-b3ea-44d4-aad5-14659f47a550"}};
    for (const auto& [className, id] : transitions) {
        const auto found = film.all(className);
        ASSERT_FALSE(found.empty()) << className;
        EXPECT_EQ(film.innermost(*found.front()).at("id"), id) << className;
    }
}

TEST_P(RoadTest, TransitionsKeepTheirSettings) {
    if (!isLong())
        return;
    const Project film = project();
    const json& ripple = *film.all("Transition::Ripple").front();
    EXPECT_EQ(ripple.at("amplitude"), 32);
    EXPECT_EQ(ripple.at("period"), 7);
    EXPECT_FALSE(ripple.contains("ampMode"));
    EXPECT_FALSE(film.all("Transition::Blinds").front()->contains("mode"));
    EXPECT_EQ(film.all("Transition::DirectCrossFade").front()->at("direction"), 2);
    EXPECT_EQ(film.all("Transition::DirectCrossFade").front()->at("smoothPart"), 4);
    for (const json* transition : film.all("Transition::Object")) {
        EXPECT_EQ(transition->at("strategy"), 0);
        EXPECT_EQ(transition->at("type"), 0);
        EXPECT_EQ(transition->at("defaultDuration"), 2000);
        EXPECT_EQ(transition->at("volume"), 100);
    }
}

TEST_P(RoadTest, LinkedClipsStayLinked) {
    const Project film = project();
    Strings links;
    for (const json& entry : film.timeline("Holiday").at("links")) {
        const json& link = film.follow(entry, "link");
        links.push_back(film.follow(entry, "slave").at("name").get<std::string>() + " to " +
                        film.follow(link, "master").at("name").get<std::string>() + " at " +
                        std::to_string(link.at("offset").get<int>()));
    }
    EXPECT_EQ(links, isLong() ? Strings({"Fishermen to Harbour at 1000", "Narration to Lighthouse at 1000"})
                              : Strings());
}

TEST_P(RoadTest, ScenesAndStabilizedVideosAreFound) {
    const Project film = project();
    const json& steady = film.follow(clipNamed(film, "Boat"), "stabilization");
    EXPECT_EQ(steady.at("pathOriginal"), "media/boat.mp4");
    EXPECT_EQ(steady.at("pathStabilized"), "stabilized/boat.mp4");
    EXPECT_EQ(steady.at("shakiness"), 5);
    EXPECT_EQ(film.follow(clipNamed(film, "Beach"), "file").at("path"), "media/beach.mp4");
    if (!isLong() || version() < sinceScenes)
        return;
    EXPECT_EQ(steady.at("smoothing"), 15);
    EXPECT_EQ(film.follow(clipNamed(film, "Village"), "nestedTimeline").at("name"), "Village");
    EXPECT_EQ(clipNamed(film, "Intro").at("unlimitedDuration"), false);
}

TEST_P(RoadTest, NothingOfWhatVersionsDroppedIsLeft) {
    const Project film = project();
    for (const json* clip : film.all("Timeline::Clip")) {
        for (const char* key : {"angle", "preview", "transition"})
            EXPECT_FALSE(clip->contains(key)) << clip->at("name") << ' ' << key;
        for (const char* key : {"labels", "motionTrackings", "collectionItemInfo", "quiz"})
            EXPECT_TRUE(clip->contains(key)) << clip->at("name") << ' ' << key;
        EXPECT_NE(clip->at("type"), 32);
    }
    std::size_t empty = 0; // stand for what an entry referred to when the archive was converted
    for (const auto& [id, object] : film.objects()) {
        const std::string name = Project::classOf(object);
        empty += name.empty() ? 1 : 0;
        for (const char* prefix : {"StaticPreview::", "Composition::", "Quiz::", "Collection::PersistentItem",
                                   "Predeclare", "Effect::Zoom", "Effect::PanAndZoom", "Effect::Cutaway"})
            EXPECT_FALSE(name.starts_with(prefix)) << name;
        for (const char* plain : {"VideoEffect", "AutoEnhance", "Crossfade", "Ripple"})
            EXPECT_NE(name, plain);
    }
    EXPECT_EQ(empty, version() == reelVersion ? 2u : 0u); // on the clips that say so
    for (const json* file : film.all("File"))
        EXPECT_FALSE(file->contains("composition"));
    for (const json* video : film.all("Video"))
        EXPECT_FALSE(video->contains("resizeMode"));
}

TEST_P(RoadTest, TheRootHoldsContentAndResourceTable) {
    const Project film = project();
    EXPECT_EQ(Project::classOf(film.root()), "Project::PersistentObject");
    const json& content = film.follow(film.root(), "content");
    EXPECT_EQ(Project::classOf(content), "Project::Content");
    EXPECT_EQ(film.follow(content, "timeline").at("name"), "Holiday");
    EXPECT_EQ(Project::classOf(film.follow(content, "userCollection")), "EditorCollection::UserObject");
    EXPECT_EQ(Project::classOf(film.follow(film.root(), "resourceTable")), "ResourceTable::Object");
}

TEST_P(RoadTest, CollectedItemsHoldTheirPayload) {
    const Project film = project();
    const json& content = film.follow(film.root(), "content");
    Strings payloads;
    for (const json& reference : film.follow(content, "userCollection").at("items")) {
        const json& item = film.follow(reference);
        EXPECT_EQ(Project::classOf(item), "Collection::Item");
        const json& payload = film.follow(item, "payload");
        payloads.push_back(item.at("collectionId").get<std::string>() + ' ' + Project::classOf(payload));
        EXPECT_FALSE(item.contains("item"));
        if (Project::classOf(payload) != "Import::Object" || !isLong())
            continue;
        const std::string name = payload.at("tag");
        EXPECT_EQ(payload.at("resourcePath"), "media/" + name);
        EXPECT_EQ(payload.at("blendingMode"), 5);
        EXPECT_EQ(payload.at("descriptionUrl"), "");
        EXPECT_EQ(item.at("downloadUrl"), "media://" + name);
        EXPECT_EQ(item.at("remoteSize"), version() < 49 ? -1 : 2048);
    }
    if (version() < sinceCollections)
        EXPECT_THAT(payloads, IsEmpty());
    else if (isLong())
        EXPECT_THAT(payloads,
                    ElementsAre("Media Import::Object", "Themes Import::Object", "Favourites Effect::Blur"));
    else
        EXPECT_THAT(payloads, ElementsAre("Media Import::Object"));
}

TEST_P(RoadTest, LutsNameTheirCubeAsAuxiliaryResource) {
    const Project film = project();
    const auto luts = film.all("Effect::Lut");
    EXPECT_EQ(luts.size(), isLong() && version() >= sinceCollections ? 1u : 0u);
    const std::string cube = "0e7c1f9d-52a4-4d0b-8f43-6b1f0a9e77d5";
    for (const json* lut : luts) {
        EXPECT_FALSE(lut->contains("cubeResourceUuid"));
        const json& part = film.innermost(*lut);
        EXPECT_EQ(part.at("auxResource"), json({{"element_0", cube}, {"element_1", 4}}));
        EXPECT_EQ(part.at("uniqueId"), cube);
    }
}

TEST_P(RoadTest, EveryEffectIsComplete) {
    const Project film = project();
    ASSERT_FALSE(film.all("Effect::Object").empty());
    for (const json* effect : film.all("Effect::Object")) {
        for (const char* key :
             {"id", "tag", "uniqueId", "intensity", "bypass", "auxResource", "resourcePath"})
            EXPECT_TRUE(effect->contains(key)) << *effect;
        EXPECT_TRUE(effect->at("id").is_string()) << *effect;
        const json& range = film.follow(*effect, "processedRange");
        EXPECT_EQ(range.at("from"), 0);
        EXPECT_EQ(range.at("to"), -1);
        EXPECT_FALSE(effect->contains("location"));
        if (effect->contains("description")) {
            EXPECT_EQ(effect->at("description") == "", effect->at("tag") == "") << *effect;
        }
    }
}

/// The fields that objects of each class have, as the editor itself saved them shortly before the newest version.
std::map<std::string, std::set<std::string>> newestFields() {
    std::map<std::string, std::set<std::string>> fields;
    const Project film(migrated(bytesOf(samples[std::size(samples) - 1])).bytes);
    for (const auto& [id, object] : film.objects()) {
        for (const auto& [key, value] : object.items())
            fields[Project::classOf(object)].insert(key);
    }
    return fields;
}

TEST_P(RoadTest, ObjectsHaveTheFieldsOfTheNewestVersion) {
    if (!isLong())
        return;
    // References that only clips with something to refer to got, and what the title in place of a quiz goes without.
    std::map<std::string, std::set<std::string>> optional = {
        {"Timeline::Clip", {"cropEnvelope", "stabilization", "volumeNormalize"}},
        {"Overlay::Item", {"envelope"}},
        {"Effect::Object", {"description"}}, // a noise suppression has none
        {"Timeline::Track", {"used"}},       // a new titles track has none
    };
    if (version() < 21 && !Reader::findStep("V21_PresetTypeAdaptor")) {
        optional["Overlay::Preset"].insert("type");
        optional["Overlay::Item"].insert("features");
    }
    auto fields = newestFields();
    const auto addEffects = [&](const char* base, const Strings& names) {
        for (const std::string& name : names)
            fields.insert({"Effect::" + name, {"@meta", base}});
    };
    if (version() == reelVersion) {
        addEffects("Effect::VideoEffect",
                   {"Erosion", "HalfTone", "MotionBlur", "TiltShift", "AutoContrast", "AutoSaturation"});
        addEffects("Effect::AudioFilter", {"AudioEcho", "AudioReverberation", "AudioMuffle", "AudioRadio"});
        fields["Effect::FindEdges"] = {"@meta", "Effect::VideoEffect", "sensibility", "type"};
        fields[""] = {"@meta"};
        optional["Effect::Mask"] = {"highlightFrames", "backgroundFill", "backgroundOpacity",
                                    "backgroundSmoothness"}; // one that only hides
    }
    const Project film = project();
    for (const auto& [id, object] : film.objects()) {
        const std::string className = Project::classOf(object);
        const auto wanted = fields.find(className);
        ASSERT_TRUE(wanted != fields.end()) << className;
        for (const auto& [key, value] : object.items())
            EXPECT_TRUE(wanted->second.count(key)) << className << " has " << key;
        for (const std::string& key : wanted->second)
            EXPECT_TRUE(object.contains(key) || optional[className].count(key))
                << className << " lacks " << key;
    }
}

TEST_P(RoadTest, TheResultIsSound) {
    const Project film = project();
    EXPECT_THAT(Tests::linesOf(Reader::verify(film.document())), IsEmpty());
    EXPECT_THAT(result().report.duplicateIds, IsEmpty());
}

TEST_P(RoadTest, TheSampleItselfIsSound) {
    const Document document = Reader::parse(bytesOf(GetParam()), QStringLiteral("holiday"));
    EXPECT_EQ(document.version, version());
    EXPECT_EQ(document.isXml(), GetParam().isXml);
    auto findings = Reader::verify(document);
    if (version() == reelVersion) {
        // Fifteen effects that no clip lists, and the noise profile of one of them.
        const auto removed = std::erase_if(findings, [](const Reader::Finding& finding) {
            return finding.fault == Reader::Fault::Unreachable;
        });
        EXPECT_EQ(removed, 16u);
    }
    EXPECT_THAT(Tests::linesOf(findings), IsEmpty());
}

TEST_P(RoadTest, TheSameSampleGivesTheSameBytes) {
    EXPECT_EQ(migrated(bytesOf(GetParam())).bytes, result().bytes);
}

TEST_P(RoadTest, StoppingAnywhereLeadsToTheSameProject) {
    const json atOnce = Tests::renumbered(result().bytes);
    const QByteArray bytes = bytesOf(GetParam());
    const int first = GetParam().isXml ? version() : std::max(version(), Reader::lastXmlVersion + 1);
    for (int stop = first; stop < Reader::currentVersion; ++stop) {
        const Result half = migrated(bytes, stop);
        const Result whole = migrated(half.bytes);
        EXPECT_EQ(Tests::difference(atOnce, Tests::renumbered(whole.bytes)), "") << "stopped at " << stop;
        EXPECT_FALSE(whole.report.hasErrors()) << "stopped at " << stop;
        if (HasFailure())
            return;
    }
}

TEST_P(RoadTest, TheOrderOfRootObjectsMeansNothing) {
    if (!GetParam().isXml)
        return;
    QDomDocument document;
    ASSERT_TRUE(document.setContent(bytesOf(GetParam())));
    QDomElement archive = document.documentElement();
    std::vector<QDomElement> objects;
    for (QDomElement e = archive.firstChildElement(QStringLiteral("RootObject")); !e.isNull();
         e = e.nextSiblingElement(QStringLiteral("RootObject")))
        objects.push_back(e);
    for (auto it = objects.rbegin(); it != objects.rend(); ++it)
        archive.appendChild(*it);
    const Result reversed = migrated(document.toByteArray(1));
    EXPECT_EQ(Tests::difference(Tests::renumbered(result().bytes), Tests::renumbered(reversed.bytes)), "");
}

// The reel: every class of effect on several clips, shared effects, and effects that no clip lists.

class ReelRoadTest : public testing::Test {
protected:
    static void SetUpTestSuite() { Reader::useStandInFolders(); }

    static QByteArray bytes() {
        return bytesOf(*std::find_if(std::begin(samples), std::end(samples),
                                     [](const Sample& s) { return s.version == reelVersion; }));
    }

    static const Project& film() {
        static const Project project(migrated(bytes()).bytes);
        return project;
    }

    static const json& effectAt(const std::string& clip, std::size_t number) {
        return film().follow(clipNamed(film(), clip).at("effects").at(number));
    }
    static double intensityAt(const std::string& clip, std::size_t number) {
        return film().innermost(effectAt(clip, number)).at("intensity").get<double>();
    }
    static std::string uniqueIdAt(const std::string& clip, std::size_t number) {
        return film().innermost(effectAt(clip, number)).at("uniqueId").get<std::string>();
    }
    static std::vector<double> placeAt(const std::string& clip, std::size_t number,
                                       const std::string& key = "transform") {
        return matrixOf(film(), effectAt(clip, number), key);
    }
    static std::vector<double> intensitiesOf(const std::string& clip) {
        std::vector<double> found;
        for (std::size_t number = 0; number < clipNamed(film(), clip).at("effects").size(); ++number)
            found.push_back(intensityAt(clip, number));
        return found;
    }
};

TEST_F(ReelRoadTest, SharedEffectsStayShared) {
    const auto idAt = [](const char* clip, std::size_t number) {
        return Serialize::Json::getObjectId(effectAt(clip, number)).value();
    };
    EXPECT_EQ(idAt("Dunes", 0), idAt("Rain", 1));
    EXPECT_EQ(idAt("Window", 0), idAt("Door", 1)); // the inset
    EXPECT_EQ(idAt("Window", 1), idAt("Door", 0)); // the key
    EXPECT_NE(idAt("Window", 2), idAt("Door", 2)); // what is behind it is each clip's own
    EXPECT_EQ(idAt("Cave", 3), idAt("Ship to shore", 1));
}

TEST_F(ReelRoadTest, StrengthsAreIntensities) {
    EXPECT_THAT(intensitiesOf("Dunes"), ElementsAre(5, 1, 0.5, 0.25, 0.75, 5));
    // Edges and shift were saved without a strength: the factor stands alone.
    EXPECT_THAT(intensitiesOf("Rain"), ElementsAre(50, 5, 1, 0.75, 0.5, 20, 0.5, 0.75));
    EXPECT_EQ(effectAt("Dunes", 2).at("sensibility"), 2);
    for (const char* clip : {"Dunes", "Rain"}) {
        for (const json& effect : clipNamed(film(), clip).at("effects")) {
            for (const char* old : {"level", "radius", "blend", "threshold", "scale", "brns"})
                EXPECT_FALSE(film().follow(effect).contains(old)) << clip << ' ' << old;
        }
    }
}

TEST_F(ReelRoadTest, ZoomsBecomeEnvelopesOfEachClip) {
    std::set<unsigned long long> envelopes;
    for (const char* name : {"Pier", "Dock", "Mole"}) {
        const json& envelope = film().follow(clipNamed(film(), name), "cropEnvelope");
        envelopes.insert(Serialize::Json::getObjectId(envelope).value());
        std::vector<double> steps;
        for (const json& key : envelope.at("keyValues"))
            steps.push_back(film().follow(key).at("step").get<double>());
        EXPECT_THAT(steps, ElementsAre(0, 0.25, 0.75, 1)) << name;
    }
    EXPECT_EQ(envelopes.size(), 3u);
    EXPECT_EQ(effectAt("Pier", 0).at("preset"), 0);
    EXPECT_EQ(effectAt("Dock", 0).at("preset"), 2);
    EXPECT_EQ(effectAt("Mole", 1).at("preset"), 3);
}

TEST_F(ReelRoadTest, AutomaticEnhancementIsFourEffects) {
    EXPECT_EQ(uniqueIdAt("Lens", 1), "2292fad1-77b2-4384-b9fe-c52358e19419");
    EXPECT_EQ(uniqueIdAt("Lens", 2), "fe49dfef-2cc8-4a94-976e-6dce9a0d3e55");
    EXPECT_EQ(uniqueIdAt("Lens", 3), "96d1bead-399f-43a1-a448-b1e3ff7ddf80");
    EXPECT_EQ(uniqueIdAt("Lens", 4), "4b7ee600-1cdf-4a97-9b06-f6c23f35fced");
    EXPECT_EQ(uniqueIdAt("Lens", 5), "7cbc055b-98bf-4fcc-be7d-f431a05e608a");
    EXPECT_EQ(effectAt("Lens", 5).at("contrast"), -0.5);
}

TEST_F(ReelRoadTest, MasksKeepTheirFrames) {
    const auto frames = [](const char* clip, const char* list) {
        std::vector<std::vector<double>> places;
        for (const json& frame : effectAt(clip, 0).at(list))
            places.push_back(
                matrixOf(film(), film().follow(film().follow(frame), "Effect::Frame"), "transform"));
        return places;
    };
    EXPECT_THAT(frames("Keyhole", "highlightFrames"),
                ElementsAre(ElementsAre(1, 0, 0, 0, 0.5, 0, 0, -0.25, 1)));
    EXPECT_THAT(frames("Keyhole", "concealFrames"), ElementsAre(ElementsAre(0.5, 0, 0, 0, 1, 0, 0.25, 0, 1)));
    EXPECT_EQ(effectAt("Keyhole", 0).at("backgroundOpacity"), 0.5);
    EXPECT_THAT(frames("Porthole", "concealFrames"), ElementsAre(ElementsAre(0.5, 0, 0, 0, 0.5, 0, 0, 0, 1)));
    for (const char* key : {"highlightFrames", "backgroundFill", "backgroundOpacity", "backgroundSmoothness"})
        EXPECT_FALSE(effectAt("Porthole", 0).contains(key)) << key;
    // Of the two sizes that a frame had in the archive the later one came through.
    EXPECT_EQ(film().follow(effectAt("Porthole", 0).at("concealFrames").at(0)).at("pixelSize"), 0);
}

TEST_F(ReelRoadTest, PicturesAreInTheirPlaces) {
    EXPECT_THAT(placeAt("Window", 0), ElementsAre(0.25, 0, 0, 0, 0.25, 0, -0.375, -0.375, 1));
    for (const char* clip : {"Window", "Door"}) {
        EXPECT_THAT(placeAt(clip, 2), ElementsAre(1, 0, 0, 0, 1, 0, 0, 0, 1));
        EXPECT_EQ(film().innermost(effectAt(clip, 2)).at("tag"), "effect_cutaway");
        EXPECT_EQ(uniqueIdAt(clip, 2), "bf86d91d-8347-4030-9e6c-2872dfcf1628");
    }
    EXPECT_EQ(uniqueIdAt("Door", 0), "a19188b6-c1fc-49e1-9395-8e8c2c17078b");
    for (const char* side : {"transformSrc", "transformDst"}) {
        EXPECT_THAT(placeAt("Twins", 0, side), ElementsAre(0.5, 0, 0, 0, 1, 0, -0.25, 0, 1));
        EXPECT_THAT(placeAt("Twins", 1, side), ElementsAre(0.5, 0, 0, 0, 1, 0, 0.25, 0, 1));
        EXPECT_THAT(placeAt("Tide", 0, side), ElementsAre(1, 0, 0, 0, 0.5, 0, 0, 0.25, 1));
    }
    EXPECT_EQ(effectAt("Twins", 1).at("mode"), 2);
    EXPECT_THAT(placeAt("Tide", 1), ElementsAre(2, 0, 0, 0, 1, 0, -0.5, 0, 1));
    EXPECT_EQ(effectAt("Gulf", 0).at("angle"), -90);
    const json& steady = film().follow(clipNamed(film(), "Gulf"), "stabilization");
    EXPECT_EQ(steady.at("pathOriginal"), "media/boat.mp4");
    EXPECT_EQ(steady.at("pathStabilized"), "stabilized/boat.mp4");
    EXPECT_EQ(steady.at("sourceDurationOriginal"), 500);
}

TEST_F(ReelRoadTest, SoundEffectsAreOnesOfTheirOwn) {
    const char* const echo = "23426fc3-a681-413a-a9fe-340503101431";
    const char* const reverberation = "e738de79-e6e1-4d25-9ae2-6bec3b427525";
    const char* const muffle = "5899d84f-ec6c-4896-b9b9-8c2556468536";
    const char* const radio = "72edac99-e300-45d8-8e57-0f7bfef3bf54";
    const char* const phone = "7f10aa3a-79c9-4bdf-9a5c-7005690a961a";
    const char* const pitch = "342d639d-1182-4b70-b071-1831d484cb85";
    EXPECT_EQ(uniqueIdAt("Cave", 0), echo);
    EXPECT_EQ(uniqueIdAt("Cave", 1), reverberation);
    EXPECT_EQ(uniqueIdAt("Cave", 2), muffle);
    EXPECT_EQ(uniqueIdAt("Ship to shore", 3), radio);
    EXPECT_EQ(uniqueIdAt("Ship to shore", 4), phone);
    EXPECT_EQ(uniqueIdAt("Ship to shore", 5), pitch);
    // It was in no group, so it keeps what it had.
    EXPECT_EQ(uniqueIdAt("Puppets", 3), "523d41e0-d692-4e08-817a-cc69788c6ab2");

    EXPECT_THAT(intensitiesOf("Ship to shore"), ElementsAre(1, 1, 1, 1, 0.67, 0.5));
    EXPECT_EQ(effectAt("Ship to shore", 4).at("gainUp"), 30);
    EXPECT_EQ(effectAt("Ship to shore", 4).at("gainDown"), 75);
    EXPECT_EQ(effectAt("Ship to shore", 5).at("pitch"), 0.6);
    EXPECT_THAT(intensitiesOf("Puppets"), ElementsAre(0.8, 1, 1, 1, 1, 1, 1, 1));
    EXPECT_EQ(effectAt("Puppets", 0).at("pitch"), 0.6);
    EXPECT_EQ(effectAt("Puppets", 1).at("pitch"), 2);
    EXPECT_EQ(effectAt("Puppets", 2).at("gainUp"), 10);
    for (const std::size_t number : {std::size_t(3), std::size_t(4)})
        EXPECT_EQ(effectAt("Cave", number).at("levelPercent"), 50);
    EXPECT_FALSE(effectAt("Cave", 4).contains("range"));
    EXPECT_EQ(uniqueIdAt("Ship to shore", 0), "6c7a85ac-2a34-44a0-bd07-504f95370354");
    EXPECT_EQ(clipNamed(film(), "Ship to shore").at("volumeNormalize"), true);
    EXPECT_EQ(clipNamed(film(), "Cave").at("volumeNormalize"), false);
}

/// The effects of an archive that no clip lists, by class.
std::map<QString, QDomElement> unlistedEffects(const QDomDocument& xml) {
    QSet<QString> listed;
    std::map<QString, QDomElement> found;
    const auto objects = Archive::Internal::elements(xml, "RootObject");
    for (const QDomElement& object : objects) {
        for (const QDomElement& item :
             Archive::Internal::children(object.firstChildElement("effects"), "Item"))
            listed.insert(Archive::valueOf(item, "Data"));
    }
    for (const QDomElement& object : objects) {
        if (Archive::typeOf(Archive::findRootBaseOfObject(object)) == "Effect::Object" &&
            !listed.contains(object.attribute("objectId"))) {
            EXPECT_TRUE(found.emplace(Archive::typeOf(object), object).second)
                << Archive::typeOf(object).toStdString() << " is there twice";
        }
    }
    return found;
}

TEST_F(ReelRoadTest, EffectsOfNoClipTakeTheRoadToo) {
    const Document document =
        Reader::parse(migrated(bytes(), Reader::lastXmlVersion).bytes, QStringLiteral("holiday"));
    const auto effects = unlistedEffects(document.xml());
    Strings names;
    for (const auto& [name, effect] : effects)
        names.push_back(name.toStdString());
    // No zoom is left, no cutaway was made, and without a clip masks stay apart.
    EXPECT_THAT(names, ElementsAre("Effect::AudioNoiseSuppress", "Effect::AudioPhone", "Effect::AudioPitch",
                                   "Effect::AutoSaturation", "Effect::Blur", "Effect::ChromaKey",
                                   "Effect::Crop", "Effect::MagicEnhance", "Effect::ManualEnhance",
                                   "Effect::MaskConceal", "Effect::MaskHighlight", "Effect::PictureInPicture",
                                   "Effect::PopArt", "Effect::SideBySide"));
    const auto partOf = [&](const char* name) {
        return Archive::findRootBaseOfObject(effects.at(QStringLiteral("Effect::") + name));
    };
    const auto intensity = [&](const char* name) {
        return Archive::readValue(partOf(name).firstChildElement("intensity"), -1);
    };
    EXPECT_EQ(intensity("Blur"), 5);
    EXPECT_EQ(intensity("AudioPhone"), 0.67);
    EXPECT_EQ(intensity("AudioPitch"), 0.5);
    EXPECT_EQ(intensity("MagicEnhance"), 1);
    EXPECT_EQ(Archive::valueOf(partOf("ChromaKey"), "uniqueId"), "a19188b6-c1fc-49e1-9395-8e8c2c17078b");
    EXPECT_EQ(Archive::valueOf(partOf("ManualEnhance"), "uniqueId"), "7cbc055b-98bf-4fcc-be7d-f431a05e608a");
    for (const char* name : {"Crop", "PictureInPicture"})
        EXPECT_EQ(effects.at(QStringLiteral("Effect::") + name).lastChildElement().tagName(), "transform");
    EXPECT_EQ(effects.at("Effect::SideBySide").lastChildElement().tagName(), "transformDst");
    EXPECT_EQ(Archive::valueOf(effects.at("Effect::PopArt"), "preset"), "1");
    for (const auto& [name, effect] : effects)
        EXPECT_FALSE(Archive::findRootBaseOfObject(effect).firstChildElement("processedRange").isNull())
            << name.toStdString();
}

TEST_F(ReelRoadTest, OnlyTwoEntriesDangle) {
    const Document document =
        Reader::parse(migrated(bytes(), Reader::lastXmlVersion).bytes, QStringLiteral("holiday"));
    std::map<unsigned long long, std::string> names;
    for (const Reader::Clip& clip : Reader::listClips(document))
        names[clip.id] = clip.name;
    Strings dangling;
    for (const Reader::Finding& finding : Reader::verify(document)) {
        if (finding.fault == Reader::Fault::DanglingReference)
            dangling.push_back(finding.className + ' ' + names[finding.id]);
    }
    // The second zoom of one, the enhancement without a flag of the other.
    EXPECT_THAT(dangling, testing::UnorderedElementsAre("Timeline::Clip Mole", "Timeline::Clip Fog"));

    // Every effect is declared once under its class; a frame alone differs, and nothing that is gone is declared.
    std::map<QString, QString> declared;
    const QDomElement list = Archive::Internal::firstDescendant(document.xml(), "predeclarations");
    Archive::iterateArray(list, [&](QDomElement& record) {
        EXPECT_TRUE(
            declared.emplace(Archive::valueOf(record, "oid"), Archive::valueOf(record, "typeName")).second)
            << Archive::valueOf(record, "oid").toStdString() << " is declared twice";
    });
    EXPECT_EQ(list.attribute("size").toUInt(), declared.size());
    for (const QDomElement& object : Archive::Internal::elements(document.xml(), "RootObject")) {
        if (Archive::typeOf(Archive::findRootBaseOfObject(object)) == "Effect::Object") {
            EXPECT_EQ(declared[object.attribute("objectId")], Archive::typeOf(object));
        }
    }
}

/// The id of the track that a clip of the main timeline lies on.
QString trackOf(const QDomDocument& xml, const QString& clipName) {
    std::map<QString, QString> names; // by id of the clip
    const QDomNodeList objects = xml.elementsByTagName(QStringLiteral("RootObject"));
    for (int i = 0; i < objects.size(); ++i) {
        const QDomElement object = objects.at(i).toElement();
        names[object.attribute(QStringLiteral("objectId"))] =
            object.firstChildElement(QStringLiteral("name")).attribute(QStringLiteral("value"));
    }
    const QDomNodeList timings = xml.elementsByTagName(QStringLiteral("Value"));
    for (int i = 0; i < timings.size(); ++i) {
        const QDomElement timing = timings.at(i).toElement();
        const QString clip =
            timing.parentNode().firstChildElement(QStringLiteral("Key")).attribute(QStringLiteral("value"));
        if (names[clip] == clipName)
            return timing.firstChildElement(QStringLiteral("track")).attribute(QStringLiteral("value"));
    }
    return {};
}

// The question of a quiz comes out of an archive of its own, whose ids know nothing of the project's.
TEST(QuizRoadTest, AnswersWithIdsOfTheProjectTakeNoReferencesAway) {
    Reader::useStandInFolders();
    const Sample& sample = *std::find_if(std::begin(samples), std::end(samples),
                                         [](const Sample& s) { return s.version == 34; });
    const Document document = Reader::parse(bytesOf(sample), QStringLiteral("holiday"));
    const QString track = trackOf(document.xml(), QStringLiteral("Where was the boat?"));
    ASSERT_FALSE(track.isEmpty());
    QString text = QString::fromUtf8(bytesOf(sample));
    const QString points = QStringLiteral("&lt;points type=\"int32_t\" value=\"3\"/&gt;");
    ASSERT_EQ(text.count(points), 2);
    text.replace(points,
                 points + QStringLiteral("&lt;answer type=\"Quiz::Answer\" objectId=\"%1\"/&gt;").arg(track));

    const Result result = migrated(text.toUtf8());
    EXPECT_THAT(result.report.duplicateIds, ElementsAre(track.toULongLong()));
    expectClips(Project(result.bytes), longCut.front(), sample.version);
}

// A theme has no version of its own, and that of the archive does not matter.
TEST(ThemeRoadTest, ThemesOfEveryArchiveAreBroughtUpToDate) {
    Reader::useStandInFolders();
    for (const int version : {3, 62}) {
        const QByteArray archive =
            "<Archive schemaVersion='" + QByteArray::number(version) +
            "'><RootRef type='ObjectRef' value='2'/><RootObject type='Theme::Object' objectId='2'>"
            "<transition type='ObjectRef' value='0'/></RootObject></Archive>";
        QDomDocument document;
        ASSERT_TRUE(document.setContent(migrated(archive, Reader::lastXmlVersion).bytes));
        const QDomElement theme = document.documentElement().firstChildElement(QStringLiteral("RootObject"));
        EXPECT_EQ(theme.attribute(QStringLiteral("type")), "Theme::Object");
        EXPECT_TRUE(theme.firstChildElement(QStringLiteral("transition")).isNull()) << version;
        const auto list = theme.firstChildElement(QStringLiteral("transitionsList"));
        EXPECT_EQ(list.attribute(QStringLiteral("size")), "0") << version;
        const auto least = theme.firstChildElement(QStringLiteral("minSceneDuration"));
        EXPECT_EQ(least.attribute(QStringLiteral("value")), "1000") << version;
    }
}

INSTANTIATE_TEST_SUITE_P(Samples, RoadTest, testing::ValuesIn(samples), [](const auto& param) {
    std::string name = param.param.file;
    std::replace_if(
        name.begin(), name.end(), [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); }, '_');
    return name;
});

} // namespace
