#include "Reader/Road.h"
#include "support/Compare.h"
#include "support/Files.h"
#include "support/Findings.h"
#include "support/Paths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QByteArray>
#include <QDomDocument>

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

namespace {

using Strings = std::vector<std::string>;

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

/// The samples at some of whose versions something is there that earlier ones do not have.
constexpr int always = 0;
constexpr int sinceScenes = 12;      // nested timelines
constexpr int sinceQuizzes = 21;     // and gates, phones and pitches
constexpr int sinceCollections = 35; // and LUTs

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

/// A saved project at the newest version, read the way that a user looks at it.
class Project {
public:
    explicit Project(const QByteArray& bytes) : m_document(Reader::parse(bytes, QStringLiteral("holiday"))) {}

    const Document& document() const { return m_document; }
    const json& root() const { return at(m_document.json().root); }
    const std::map<unsigned long long, json>& objects() const { return m_document.json().flat.objects; }
    const json& at(unsigned long long id) const { return objects().at(id); }

    /// What a reference leads to; the value itself where it is no reference.
    const json& follow(const json& value) const {
        const auto id = Serialize::Json::getReferenceObjectId(value);
        return id ? at(*id) : value;
    }
    const json& follow(const json& object, const std::string& key) const { return follow(object.at(key)); }

    std::vector<const json*> all(const std::string& className) const {
        std::vector<const json*> found;
        for (const auto& [id, object] : objects()) {
            if (classOf(object) == className)
                found.push_back(&object);
        }
        return found;
    }

    const json& timeline(const std::string& name) const {
        for (const json* timeline : all("Timeline::Object")) {
            if (timeline->at("name") == name)
                return *timeline;
        }
        throw std::runtime_error("no timeline " + name);
    }

    static std::string classOf(const json& object) {
        return Serialize::Json::getClassName(object).value_or(std::string());
    }

    /// The part of an object that its innermost base class holds.
    const json& innermost(const json& object) const {
        const json* part = &object;
        for (bool isFound = true; isFound;) {
            isFound = false;
            for (const auto& [key, value] : part->items()) {
                const json& target = follow(value);
                if (target.is_object() && classOf(target) == key) {
                    part = &target;
                    isFound = true;
                    break;
                }
            }
        }
        return *part;
    }

private:
    Document m_document;
};

// The film as a user knows it. Lanes count the timeline's tracks from the first.

struct ExpectedClip {
    const char* name;
    int type;
    std::int64_t timestamp;
    std::int64_t duration;
    std::size_t lane;
    Strings effects;
    int since = always;
};

struct ExpectedTransition {
    const char* className;
    const char* from; ///< null for none
    const char* to;
    int since = always;
};

struct ExpectedTimeline {
    const char* name;
    std::vector<int> lanes; ///< the types of the tracks
    std::vector<ExpectedClip> clips;
    std::vector<ExpectedTransition> transitions;
    int since = always;
};

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

/// The classes of a clip's effects that a sample of that version has.
Strings effectsSince(const ExpectedClip& clip, int version) {
    Strings effects;
    for (const std::string& name : clip.effects) {
        const bool isLate = (name == "Lut" && version < sinceCollections) ||
                            ((name == "AudioNoiseGate" || name == "AudioPhone" || name == "AudioPitch") &&
                             version < sinceQuizzes);
        if (!isLate)
            effects.push_back("Effect::" + name);
    }
    return effects;
}

/// The type of a clip in a sample of that version: what is a scene was a video before there were any.
int typeSince(const ExpectedClip& clip, int version) {
    if (clip.type == 0)
        return version < sinceScenes ? 1 : 64;
    return clip.type;
}

Strings effectsOf(const Project& project, const json& clip) {
    Strings names;
    for (const json& effect : clip.at("effects"))
        names.push_back(Project::classOf(project.follow(effect)));
    return names;
}

void expectClips(const Project& project, const ExpectedTimeline& expected, int version) {
    const json& timeline = project.timeline(expected.name);
    std::vector<unsigned long long> lanes;
    std::vector<int> types;
    for (const json& track : timeline.at("tracks")) {
        lanes.push_back(Serialize::Json::getAnyObjectId(track).value());
        types.push_back(project.at(lanes.back()).at("type").get<int>());
    }
    EXPECT_EQ(types, expected.lanes);
    ASSERT_EQ(std::set(lanes.begin(), lanes.end()).size(), lanes.size());

    std::map<std::string, const json*> entries;
    for (const json& entry : timeline.at("clips")) {
        const std::string name = project.follow(entry, "clip").at("name");
        EXPECT_TRUE(entries.emplace(name, &entry).second) << name << " is there twice";
    }
    std::size_t count = 0;
    for (const ExpectedClip& clip : expected.clips) {
        if (version < clip.since)
            continue;
        ++count;
        SCOPED_TRACE(clip.name);
        const auto entry = entries.find(clip.name);
        if (entry == entries.end()) {
            ADD_FAILURE() << "the clip is lost";
            continue;
        }
        const json& object = project.follow(*entry->second, "clip");
        const json& timing = project.follow(*entry->second, "timing");
        EXPECT_EQ(object.at("type"), typeSince(clip, version));
        EXPECT_EQ(timing.at("timestamp"), clip.timestamp);
        EXPECT_EQ(timing.at("duration"), clip.duration);
        const auto lane = std::find(lanes.begin(), lanes.end(),
                                    Serialize::Json::getAnyObjectId(timing.at("track")).value_or(0));
        EXPECT_EQ(static_cast<std::size_t>(lane - lanes.begin()), clip.lane);
        EXPECT_EQ(effectsOf(project, object), effectsSince(clip, version));
        EXPECT_EQ(Serialize::Json::getAnyObjectId(object.at("timeline")),
                  Serialize::Json::getObjectId(timeline));
    }
    EXPECT_EQ(entries.size(), count);
}

void expectTransitions(const Project& project, const ExpectedTimeline& expected, int version) {
    const auto nameOf = [&](const json& clip) -> std::string {
        return clip.is_null() ? "none" : project.follow(clip).at("name").get<std::string>();
    };
    Strings found;
    for (const json& entry : project.timeline(expected.name).at("transitions"))
        found.push_back(Project::classOf(project.follow(entry, "transition")) + ' ' +
                        nameOf(entry.at("clipFrom")) + " to " + nameOf(entry.at("clipTo")));
    Strings wanted;
    for (const ExpectedTransition& transition : expected.transitions) {
        if (version >= transition.since)
            wanted.push_back(std::string(transition.className) + ' ' +
                             (transition.from ? transition.from : "none") + " to " +
                             (transition.to ? transition.to : "none"));
    }
    EXPECT_EQ(found, wanted);
}

/// The clip of that name on any timeline.
const json& clipNamed(const Project& project, const std::string& name) {
    for (const json* clip : project.all("Timeline::Clip")) {
        if (clip->at("name") == name)
            return *clip;
    }
    throw std::runtime_error("no clip " + name);
}

const json& timingOf(const Project& project, const std::string& timeline, const std::string& name) {
    for (const json& entry : project.timeline(timeline).at("clips")) {
        if (project.follow(entry, "clip").at("name") == name)
            return project.follow(entry, "timing");
    }
    throw std::runtime_error("no timing of " + name);
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

/// The texts of a title's items.
Strings textsOf(const Project& project, const json& clip) {
    Strings texts;
    for (const json& item : project.follow(clip, "overlay").at("items")) {
        const std::string encoded = project.follow(item).at("encodedText");
        texts.push_back(QByteArray::fromBase64(QByteArray::fromStdString(encoded)).toStdString());
    }
    return texts;
}

/// The nested value of a saved project with the ids of its objects counted in walking order.
class Renumbered {
public:
    static json of(const QByteArray& bytes) {
        json value = json::parse(bytes.toStdString());
        Renumbered numbers;
        numbers.count(value);
        numbers.replace(value);
        return value;
    }

private:
    static constexpr const char* reference = "@meta_reference";

    void count(json& value) {
        if (!value.is_structured())
            return;
        if (value.is_object() && value.contains("@meta")) {
            json& id = value["@meta"]["object_id"];
            id = m_numbers.emplace(id.get<unsigned long long>(), m_numbers.size() + 1).first->second;
        }
        for (json& member : value)
            count(member);
    }
    void replace(json& value) {
        if (!value.is_structured())
            return;
        if (value.is_object() && value.contains(reference)) {
            value[reference] = m_numbers.at(value[reference].get<unsigned long long>());
            return;
        }
        for (json& member : value)
            replace(member);
    }

    std::map<unsigned long long, unsigned long long> m_numbers;
};

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
    EXPECT_EQ(result().report.to, 77);
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
    const auto lengthOf = [&](const char* name) {
        std::int64_t length = 0;
        for (const json& entry : film.timeline(name).at("clips")) {
            const json& timing = film.follow(entry, "timing");
            length = std::max(length, timing.at("timestamp").get<std::int64_t>() +
                                          timing.at("duration").get<std::int64_t>());
        }
        return length;
    };
    if (!isLong()) {
        EXPECT_EQ(lengthOf("Holiday"), 28000);
    } else {
        EXPECT_EQ(lengthOf("Holiday"), version() < sinceQuizzes ? 43750 : 48750);
    }
    if (isLong() && version() >= sinceScenes) {
        EXPECT_EQ(lengthOf("Village"), 5000);
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
            if (version() < timeline.since || version() < clip.since || text == titleTexts.end())
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
    for (const auto& [id, object] : film.objects()) {
        const std::string name = Project::classOf(object);
        EXPECT_FALSE(name.empty()) << id;
        for (const char* prefix : {"StaticPreview::", "Composition::", "Quiz::", "Collection::PersistentItem",
                                   "Predeclare", "Effect::Zoom", "Effect::PanAndZoom", "Effect::Cutaway"})
            EXPECT_FALSE(name.starts_with(prefix)) << name;
        for (const char* plain : {"VideoEffect", "AutoEnhance", "Crossfade", "Ripple"})
            EXPECT_NE(name, plain);
    }
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
    const auto fields = newestFields();
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
    EXPECT_THAT(Tests::linesOf(Reader::verify(document)), IsEmpty());
}

TEST_P(RoadTest, TheSameSampleGivesTheSameBytes) {
    EXPECT_EQ(migrated(bytesOf(GetParam())).bytes, result().bytes);
}

TEST_P(RoadTest, StoppingAnywhereLeadsToTheSameProject) {
    const json atOnce = Renumbered::of(result().bytes);
    const QByteArray bytes = bytesOf(GetParam());
    const int first = GetParam().isXml ? version() : std::max(version(), Reader::lastXmlVersion + 1);
    for (int stop = first; stop < Reader::currentVersion; ++stop) {
        const Result half = migrated(bytes, stop);
        const Result whole = migrated(half.bytes);
        EXPECT_EQ(Tests::difference(atOnce, Renumbered::of(whole.bytes)), "") << "stopped at " << stop;
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
    EXPECT_EQ(Tests::difference(Renumbered::of(result().bytes), Renumbered::of(reversed.bytes)), "");
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

INSTANTIATE_TEST_SUITE_P(Samples, RoadTest, testing::ValuesIn(samples), [](const auto& param) {
    std::string name = param.param.file;
    std::replace_if(
        name.begin(), name.end(), [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); }, '_');
    return name;
});

} // namespace
