// The visible content of the samples after migration: clips, transitions, tracks, titles and effects.

#include "support/Holiday.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <vector>

using nlohmann::json;
using testing::Contains;
using testing::ElementsAre;
using Tests::clipNamed;
using Tests::effectOf;
using Tests::expectClips;
using Tests::ExpectedTimeline;
using Tests::expectTransitions;
using Tests::filmOf;
using Tests::intensityOf;
using Tests::matrixOf;
using Tests::Project;
using Tests::sinceQuizzes;
using Tests::sinceScenes;
using Tests::Strings;
using Tests::textsOf;
using Tests::timingOf;

namespace {

class FilmMigrationTest : public Tests::HolidayTest {};

const std::map<std::string, std::string> titleTexts = {
    {"Summer by the sea", "Summer by the sea"},
    {"The old harbour", "The old harbour <1924>"},
    {"Fishermen", "Fishermen & boats"},
    {"Welcome", "Welcome"},
    {"Default name", ""},
};

TEST_P(FilmMigrationTest, EveryClipIsOnceAtItsTimeOnItsTrackWithItsEffects) {
    const Project film = project();
    for (const ExpectedTimeline& timeline : filmOf(GetParam())) {
        if (version() < timeline.since)
            continue;
        SCOPED_TRACE(timeline.name);
        expectClips(film, timeline, version());
    }
}

TEST_P(FilmMigrationTest, TransitionsJoinTheirClips) {
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

TEST_P(FilmMigrationTest, TimelinesKeepTheirLengths) {
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

TEST_P(FilmMigrationTest, TracksHaveTheirTypesAndFlags) {
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

TEST_P(FilmMigrationTest, TitlesKeepTheirTexts) {
    const Project film = project();
    std::size_t found = 0;
    for (const ExpectedTimeline& timeline : filmOf(GetParam())) {
        for (const Tests::ExpectedClip& clip : timeline.clips) {
            const auto text = titleTexts.find(clip.name);
            if (version() < timeline.since || !isThere(clip, version()) || text == titleTexts.end())
                continue;
            EXPECT_THAT(textsOf(film, clipNamed(film, clip.name)), ElementsAre(text->second));
            ++found;
        }
    }
    EXPECT_GE(found, 2u);
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

TEST_P(FilmMigrationTest, OverlaysAreOfTheNewPresetType) {
    if (!isLong())
        return;
    if (version() < 21 && !Reader::findAdaptor("V21_PresetTypeAdaptor"))
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

TEST_P(FilmMigrationTest, OverlayItemsAreComplete) {
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

TEST_P(FilmMigrationTest, EffectsKeepTheirStrength) {
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

TEST_P(FilmMigrationTest, EffectsArePlacedByMatrices) {
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

TEST_P(FilmMigrationTest, ZoomsAreEnvelopesOfTheirClips) {
    if (!isLong())
        return;
    const Project film = project();
    const auto steps = [&](const char* clip) {
        std::vector<std::pair<double, double>> found; // position and enlargement
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

TEST_P(FilmMigrationTest, IdentifiersAreThoseOfTheEditor) {
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

TEST_P(FilmMigrationTest, TransitionsKeepTheirSettings) {
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

TEST_P(FilmMigrationTest, LinkedClipsStayLinked) {
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

TEST_P(FilmMigrationTest, ScenesAndStabilizedVideosAreFound) {
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

INSTANTIATE_TEST_SUITE_P(Samples, FilmMigrationTest, testing::ValuesIn(Tests::samples), Tests::sampleName);

} // namespace
