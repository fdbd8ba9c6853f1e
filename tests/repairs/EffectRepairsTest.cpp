// Effects and quizzes that a step would lose or change, and objects of JSON documents that no step converts.

#include "repairs/OldProject.h"
#include "support/Holiday.h"

#include <cmath>
#include <limits>

using testing::ElementsAre;
using Tests::clipNames;
using Tests::embedded;
using Tests::expectWhole;
using Tests::field;
using Tests::linesOf;
using Tests::list;
using Tests::Migrated;
using Tests::migrateOld;
using Tests::namesOf;
using Tests::number;
using Tests::OldProject;
using Tests::Project;
using Tests::real;
using Tests::ref;
using Tests::refs;
using Tests::small;
using Tests::text;
using Tests::timingOf;
using Tests::trackTypeOf;

namespace {

constexpr int titles = 16;

/// A film of two videos at that version, with fields that are added to each.
OldProject film(int version, const std::string& beach, const std::string& boat) {
    OldProject project(version);
    if (version >= 27)
        project.tracks(2, {{20, 16}});
    const long long track = version >= 27 ? 20 : 16;
    project.timeline(2, "Film", {{3, 4, track, 0, 5000}, {5, 6, track, 5000, 3000}},
                     version >= 27 ? refs("tracks", {20}) : "");
    if (version >= 35 && version < 57)
        project.content(40, 2);
    else
        project.root(2);
    return project.clip(3, 1, "Beach", beach).clip(5, 1, "Boat", boat);
}

/// The base class parts of an effect.
std::string effectParts(long long id, const std::string& more = {}) {
    return embedded("BaseOfObject", "Effect::VideoEffect", id,
                    embedded("BaseOfObject", "Effect::Object", id,
                             text("id", "some") + text("uniqueId", "some") + text("tag", "Tag") +
                                 text("description", "Tag") + real("intensity", 1) + more));
}

// LUTs

OldProject lut(const std::string& uniqueId) {
    OldProject project = film(56, refs("effects", {10}), "");
    return project.object("Effect::Lut", 10,
                          embedded("BaseOfObject", "Effect::VideoEffect", 10,
                                   embedded("BaseOfObject", "Effect::Object", 10,
                                            text("id", "lut") + text("uniqueId", uniqueId) +
                                                text("tag", "Lut") + text("description", "Lut"))));
}

TEST(LutWithoutCube, GetsTheCubeThatItIsNamedAfter) {
    const QByteArray bytes = lut("0e7c1f9d-52a4-4d0b-8f43-6b1f0a9e77d5").bytes();
    EXPECT_EQ(migrateOld(bytes, false).failedStep(), "V63_LutEffectAuxResourceAdaptor");
    const Migrated repaired = migrateOld(bytes, true);
    expectWhole(repaired);
    const Project project = repaired.project();
    const auto& effect = project.innermost(*project.all("Effect::Lut").at(0));
    EXPECT_EQ(effect.at("auxResource").at("element_0"), "0e7c1f9d-52a4-4d0b-8f43-6b1f0a9e77d5");
    EXPECT_EQ(effect.at("uniqueId"), "0e7c1f9d-52a4-4d0b-8f43-6b1f0a9e77d5");
    EXPECT_THAT(repaired.repairs(), ElementsAre("lut-without-cube"));
    EXPECT_THAT(namesOf(repaired.repair("lut-without-cube").clips()), ElementsAre("Beach"));
}

TEST(LutWithoutCube, TheGenericOneGetsAnEmptyCubeAndKeepsItsName) {
    const std::string generic = "296139e9-c085-4e73-aacd-df41093c132a";
    QByteArray bytes = lut(generic).bytes();
    bytes.replace("schemaVersion='56'", "schemaVersion='55'"); // version 56 names it after the missing cube
    EXPECT_EQ(migrateOld(bytes, false).failedStep(), "V63_LutEffectAuxResourceAdaptor");
    const Migrated repaired = migrateOld(bytes, true);
    expectWhole(repaired);
    const Project project = repaired.project();
    const auto& effect = project.innermost(*project.all("Effect::Lut").at(0));
    EXPECT_EQ(effect.at("auxResource").at("element_0"), "");
    EXPECT_EQ(effect.at("uniqueId"), generic);
}

// Masks

std::string highlightFrame(long long id, int shape) {
    return embedded("Data", "Effect::FrameHighlight", id, small("shape", shape));
}

OldProject sharedMask() {
    OldProject project = film(50, refs("effects", {10}), refs("effects", {10}));
    project.object("Effect::MaskHighlight", 10,
                   effectParts(10) + small("method", 2) + real("opacity", 0.5) + real("smoothness", 0.25) +
                       list("frames", {highlightFrame(11, 1), highlightFrame(12, 2)}));
    return project.declared(11, "Effect::FrameHighlight").declared(12, "Effect::FrameHighlight");
}

const nlohmann::json& maskOf(const Project& project, const std::string& clip) {
    return Tests::effectOf(project, clip, "Mask");
}

TEST(SharedMasks, TheSecondClipGetsAnEmptyOneWithoutRepair) {
    const Migrated plain = migrateOld(sharedMask().bytes(), false);
    ASSERT_FALSE(plain.error);
    EXPECT_EQ(maskOf(plain.project(), "Beach").at("highlightFrames").size(), 2u);
    EXPECT_TRUE(maskOf(plain.project(), "Boat").at("highlightFrames").empty());
}

TEST(SharedMasks, EachClipGetsItsOwn) {
    const Migrated repaired = migrateOld(sharedMask().bytes(), true);
    expectWhole(repaired);
    const Project project = repaired.project();
    for (const char* clip : {"Beach", "Boat"}) {
        const auto& mask = maskOf(project, clip);
        ASSERT_EQ(mask.at("highlightFrames").size(), 2u) << clip;
        const auto& second = project.follow(mask.at("highlightFrames")[1]);
        EXPECT_EQ(project.innermost(second).at("shape"), 2) << clip;
        EXPECT_EQ(mask.at("backgroundOpacity"), 0.5) << clip;
        EXPECT_EQ(mask.at("backgroundFill"), 2) << clip;
    }
    EXPECT_NE(Serialize::Json::getObjectId(maskOf(project, "Beach")),
              Serialize::Json::getObjectId(maskOf(project, "Boat")));
    EXPECT_THAT(repaired.repairs(), ElementsAre("shared-masks"));
    EXPECT_THAT(namesOf(repaired.repair("shared-masks").clips()), ElementsAre("Boat"));
}

TEST(SharedMasks, TheArchiveBeforeJsonHasNoFaultEither) {
    const Migrated repaired = migrateOld(sharedMask().bytes(), true, 56);
    ASSERT_FALSE(repaired.error);
    EXPECT_THAT(linesOf(Reader::verify(Reader::parse(repaired.bytes, QStringLiteral("result")))),
                Not(testing::Contains(testing::HasSubstr("duplicate-id"))));
}

TEST(RoundedNumbers, OfMasksKeepAllDigits) {
    constexpr double third = 1.0 / 3.0;
    OldProject project = film(50, refs("effects", {10, 12}), "");
    project.object("Effect::MaskHighlight", 10,
                   effectParts(10) + small("method", 2) + real("opacity", third) + real("smoothness", 0.25) +
                       list("frames", {}));
    project.object("Effect::MaskConceal", 12,
                   effectParts(12) + real("pixelSize", third) +
                       list("frames", {embedded("Data", "Effect::FrameConceal", 13, small("shape", 1))}));
    project.declared(13, "Effect::FrameConceal");
    const auto opacityOf = [](const Migrated& migrated) {
        const Project result = migrated.project();
        return maskOf(result, "Beach").at("backgroundOpacity").get<double>();
    };
    EXPECT_EQ(opacityOf(migrateOld(project.bytes(), false)), 0.333333);
    const Migrated repaired = migrateOld(project.bytes(), true);
    expectWhole(repaired);
    EXPECT_EQ(opacityOf(repaired), third);
    const Project result = repaired.project();
    const auto& mask = maskOf(result, "Beach");
    EXPECT_EQ(mask.at("backgroundSmoothness"), 0.25);
    EXPECT_EQ(result.follow(mask.at("concealFrames")[0]).at("pixelSize"), third);
    EXPECT_THAT(repaired.repairs(), ElementsAre("rounded-numbers"));
    EXPECT_EQ(repaired.repair("rounded-numbers").count, 2u);
}

// Fields that come twice

TEST(DoubledFields, TheFirstPixelSizeOfAFrameCounts) {
    OldProject project = film(50, refs("effects", {12}), "");
    project.object("Effect::MaskConceal", 12,
                   effectParts(12) +
                       list("frames", {embedded("Data", "Effect::FrameConceal", 13,
                                                small("shape", 1) + real("pixelSize", 0.125))}));
    project.declared(13, "Effect::FrameConceal");
    const auto sizeOf = [](const Migrated& migrated) {
        const Project result = migrated.project();
        return result.follow(maskOf(result, "Beach").at("concealFrames")[0]).at("pixelSize").get<double>();
    };
    EXPECT_EQ(sizeOf(migrateOld(project.bytes(), false)), 0.0);
    const Migrated repaired = migrateOld(project.bytes(), true);
    expectWhole(repaired);
    EXPECT_EQ(sizeOf(repaired), 0.125);
    EXPECT_THAT(repaired.repairs(), ElementsAre("doubled-fields"));
}

TEST(DoubledFields, ANoiseReductionKeepsItsUniqueId) {
    OldProject project = film(17, refs("effects", {10}), "");
    project.object("Effect::AudioNoiseReduction", 10,
                   embedded("BaseOfObject", "Effect::AudioEffect", 10,
                            embedded("BaseOfObject", "Effect::Object", 10,
                                     field("id", "uint32_t", "8") + text("tag", "Noise") +
                                         field("uniqueId", "uint32_t", "8"))));
    const auto effectOf = [](const Project& result) {
        return result.innermost(*result.all("Effect::AudioNoiseSuppress").at(0));
    };
    EXPECT_EQ(effectOf(migrateOld(project.bytes(), false).project()).at("uniqueId"), "");
    const Migrated repaired = migrateOld(project.bytes(), true);
    expectWhole(repaired);
    const auto effect = effectOf(repaired.project());
    EXPECT_NE(effect.at("uniqueId"), "");
    EXPECT_EQ(effect.at("uniqueId").get<std::string>().size(), 36u); // the identifier of noise suppressions
    EXPECT_EQ(effect.at("description"), "effect_noisesuppress");
    EXPECT_THAT(repaired.repairs(), ElementsAre("doubled-fields"));
    EXPECT_THAT(namesOf(repaired.repair("doubled-fields").clips()), ElementsAre("Beach"));
}

// Numbers

TEST(InfiniteNumbers, BecomeTheNumberOfTheirTextOrZero) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    OldProject project = film(56, refs("effects", {10}), "");
    project.object("Effect::Blur", 10,
                   effectParts(10) + real("scale", nan, "0.75") + real("level", nan, "nan") +
                       "<far type='double' value='inf' binaryData='f/AAAAAAAAA='/>");
    const auto blurOf = [](const Migrated& migrated) {
        const Project result = migrated.project();
        return Tests::effectOf(result, "Beach", "Blur");
    };
    EXPECT_TRUE(blurOf(migrateOld(project.bytes(), false)).at("scale").is_null());
    const Migrated repaired = migrateOld(project.bytes(), true);
    expectWhole(repaired);
    EXPECT_EQ(blurOf(repaired).at("scale"), 0.75);
    EXPECT_EQ(blurOf(repaired).at("level"), 0.0);
    EXPECT_EQ(blurOf(repaired).at("far"), 0.0);
    EXPECT_THAT(repaired.repairs(), ElementsAre("infinite-numbers"));
    EXPECT_EQ(repaired.repair("infinite-numbers").count, 3u);
}

// Quizzes

const char* const questionText =
    "<Archive><RootRef type=\"ObjectRef\" value=\"2\"/>"
    "<RootObject type=\"Quiz::Question\" objectId=\"2\">%1</RootObject></Archive>";

/// A quiz preset of one question.
std::string quizPreset(long long item, const std::string& question) {
    const QString document = QString(questionText)
                                 .replace("%1", QString::fromStdString(question))
                                 .toHtmlEscaped()
                                 .replace("'", "&apos;");
    return small("type", 4) + text("tag", "Quiz") +
           list("items", {embedded("Data", "Overlay::Item", item, text("text", document.toStdString()))});
}

OldProject quizzes(const std::string& question, long long secondPreset) {
    OldProject project = film(39, "", "");
    project.timeline(50, "Village", {{51, 52, 61, 0, 1000}, {53, 54, 61, 1000, 1000}, {55, 56, 60, 0, 500}},
                     refs("tracks", {60, 61}));
    project.tracks(50, {{60, 16}, {61, 64}});
    project.object("Overlay::Preset", 70, quizPreset(71, question));
    if (secondPreset != 70)
        project.object("Overlay::Preset", secondPreset,
                       quizPreset(secondPreset + 1, text("question", "When?")));
    project.clip(51, 32, "First quiz", ref("overlay", 70));
    project.clip(53, 32, "Second quiz", ref("overlay", secondPreset));
    project.clip(55, 1, "Square").clip(57, 64, "Village", ref("nestedTimeline", 50));
    return project;
}

TEST(SharedQuizzes, TheSecondClipHasNoQuizWithoutRepair) {
    const QByteArray bytes = quizzes(text("question", "Where?"), 70).bytes();
    const auto quizzesIn = [](const Migrated& migrated) {
        return migrated.bytes.count("type=\"Quiz::Preset\"") + migrated.bytes.count("type='Quiz::Preset'");
    };
    const Migrated plain = migrateOld(bytes, false, 62);
    ASSERT_FALSE(plain.error);
    EXPECT_EQ(quizzesIn(plain), 1);
    EXPECT_THAT(linesOf(Reader::verify(Reader::parse(plain.bytes, QStringLiteral("result")))),
                testing::Contains(testing::HasSubstr("dangling-reference Timeline::Clip 53 quiz")));

    const Migrated repaired = migrateOld(bytes, true, 62);
    ASSERT_FALSE(repaired.error);
    EXPECT_EQ(quizzesIn(repaired), 2);
    EXPECT_EQ(repaired.bytes.count("\"Where?\""), 2);
    EXPECT_THAT(linesOf(Reader::verify(Reader::parse(repaired.bytes, QStringLiteral("result")))),
                Not(testing::Contains(testing::HasSubstr("dangling-reference"))));
    EXPECT_EQ(repaired.repairs().front(), "shared-quizzes");
    EXPECT_EQ(repaired.repair("shared-quizzes").objects.front().id, 53u);
    expectWhole(migrateOld(bytes, true));
}

TEST(SharedQuizzes, ATitleKeepsThePresetThatItSharesWithAQuiz) {
    OldProject project = film(39, "", "");
    project.object("Overlay::Preset", 70, quizPreset(71, text("question", "Where?")));
    project.clip(51, 32, "Quiz", ref("overlay", 70)).clip(53, 4, "Title", ref("overlay", 70));
    const auto isTitleThere = [](const Migrated& migrated) {
        return migrated.bytes.contains("<RootObject objectId=\"70\" type=\"Overlay::Preset\"");
    };
    EXPECT_FALSE(isTitleThere(migrateOld(project.bytes(), false, 62)));
    EXPECT_TRUE(isTitleThere(migrateOld(project.bytes(), true, 62)));
}

TEST(QuizIds, AnswersThatCarryIdsOfTheProject) {
    // The answers have the ids of a clip and of a timing.
    const std::string question =
        text("question", "Where?") +
        list("answers", {embedded("Data", "Quiz::Answer", 3, text("text", "Here")),
                         embedded("Data", "Quiz::Answer", 4, text("text", "There"))}) +
        ref("right", 4);
    const QByteArray bytes = quizzes(question, 80).bytes();
    const auto duplicates = [](const Migrated& migrated) {
        const auto lines = linesOf(Reader::verify(Reader::parse(migrated.bytes, QStringLiteral("result"))));
        return std::count_if(lines.begin(), lines.end(),
                             [](const std::string& line) { return line.starts_with("duplicate-id"); });
    };
    const Migrated plain = migrateOld(bytes, false, 62);
    ASSERT_FALSE(plain.error);
    EXPECT_GT(duplicates(plain), 0);
    const Migrated repaired = migrateOld(bytes, true, 62);
    ASSERT_FALSE(repaired.error);
    EXPECT_EQ(duplicates(repaired), 0);
    EXPECT_THAT(repaired.repairs(), testing::Contains("quiz-ids"));
    // The reference to the right answer followed.
    const int answer = repaired.bytes.indexOf("\"There\"");
    const int right = repaired.bytes.indexOf("<right type=\"ObjectRef\" value=\"");
    ASSERT_TRUE(answer > 0 && right > 0);
    const QByteArray id =
        repaired.bytes.mid(right + 31, repaired.bytes.indexOf('"', right + 31) - right - 31);
    EXPECT_TRUE(repaired.bytes.contains("<Data objectId=\"" + id + "\" type=\"Quiz::Answer\""))
        << id.toStdString();
    EXPECT_NE(id, "4");
}

TEST(Predeclarations, OfObjectsThatAQuizPresetNamesAreMadeAgain) {
    // Version 40 removes the records of all that the preset's record names.
    OldProject project = quizzes(text("question", "Where?"), 80);
    project.undeclared(70).declared(70, "Overlay::Preset", {71, 5});
    EXPECT_EQ(migrateOld(project.bytes(), false).failedStep(), "V69_RemoveQuizzesAdaptor");
    const Migrated repaired = migrateOld(project.bytes(), true);
    expectWhole(repaired);
    EXPECT_THAT(clipNames(repaired.project(), "Film"), ElementsAre("Beach", "Boat"));
    EXPECT_EQ(repaired.repair("predeclarations").before, "V41_CutawayToPictureInPictureAdaptor");
    EXPECT_THAT(namesOf(repaired.repair("predeclarations").clips()), ElementsAre("Boat"));
}

/// A film at version 62 with a quiz, and a title and a video on the track of the quizzes.
OldProject quizTrack(const std::string& links) {
    OldProject project(62);
    project.root(2).timeline(
        2, "Film",
        {{3, 4, 20, 0, 5000}, {5, 6, 22, 1000, 1000}, {7, 8, 22, 2000, 1000}, {10, 11, 22, 3000, 500}},
        refs("tracks", {22, 20}) + links);
    project.tracks(2, {{22, 96}, {20, 16}}).clip(3, 1, "Beach").clip(5, 32, "Quiz");
    return project.title(7, "Welcome", 9).clip(10, 1, "Inset");
}

TEST(QuizTracks, ClipsThatAreNoQuizzesGetAnotherTrack) {
    const QByteArray bytes = quizTrack("").bytes();
    const Migrated plain = migrateOld(bytes, false);
    ASSERT_FALSE(plain.error);
    EXPECT_EQ(trackTypeOf(plain.project(), "Film", "Welcome"), -1);
    EXPECT_EQ(trackTypeOf(plain.project(), "Film", "Inset"), -1);
    const Migrated repaired = migrateOld(bytes, true);
    expectWhole(repaired);
    EXPECT_THAT(clipNames(repaired.project(), "Film"), ElementsAre("Beach", "Welcome", "Inset"));
    EXPECT_EQ(trackTypeOf(repaired.project(), "Film", "Welcome"), titles);
    EXPECT_EQ(trackTypeOf(repaired.project(), "Film", "Inset"), 8);
    EXPECT_THAT(repaired.repairs(), ElementsAre("quiz-tracks"));
    EXPECT_THAT(namesOf(repaired.repair("quiz-tracks").clips()), ElementsAre("Welcome", "Inset"));
}

std::string link(long long slave, long long id, long long master) {
    return ref("Key", slave) +
           embedded("Value", "Timeline::Link", id, ref("master", master) + number("offset", 1));
}

TEST(QuizLinks, EndWithTheQuizzes) {
    OldProject project(62);
    project.root(2).timeline(2, "Film", {{3, 4, 20, 0, 5000}, {5, 6, 22, 1000, 1000}, {7, 8, 21, 2000, 1000}},
                             refs("tracks", {22, 21, 20}) +
                                 list("links", {link(7, 30, 5), link(5, 31, 3), link(3, 32, 7)}));
    project.tracks(2, {{22, 96}, {21, 64}, {20, 16}});
    project.clip(3, 1, "Beach").clip(5, 32, "Quiz").clip(7, 1, "Inset");
    const Migrated plain = migrateOld(project.bytes(), false);
    ASSERT_FALSE(plain.error);
    EXPECT_EQ(plain.project().timeline("Film").at("links").size(), 2u); // one leads to the quiz, which stays
    EXPECT_TRUE(plain.bytes.contains("\"Quiz\""));
    const Migrated repaired = migrateOld(project.bytes(), true);
    expectWhole(repaired);
    const Project result = repaired.project();
    const auto& links = result.timeline("Film").at("links");
    ASSERT_EQ(links.size(), 1u);
    EXPECT_EQ(result.follow(links[0], "slave").at("name"), "Beach");
    EXPECT_FALSE(repaired.bytes.contains("\"Quiz\""));
    EXPECT_THAT(repaired.repairs(), ElementsAre("quiz-links"));
    EXPECT_THAT(namesOf(repaired.repair("quiz-links").clips()), ElementsAre("Inset"));
}

std::string transition(long long id, long long from, long long to) {
    return ref("Key", id) + list("Value", {ref("First", from) + ref("Second", to)});
}

TEST(QuizLinks, TransitionsEndWithTheQuizzes) {
    OldProject project(62);
    project.root(2).timeline(
        2, "Film", {{3, 4, 20, 0, 5000}, {5, 6, 22, 1000, 1000}, {7, 8, 20, 5000, 1000}},
        refs("tracks", {22, 20}) +
            list("transitions", {transition(40, 3, 5), transition(41, 5, 7), transition(42, 3, 7)}));
    project.tracks(2, {{22, 96}, {20, 16}});
    project.clip(3, 1, "Beach").clip(5, 32, "Quiz").clip(7, 1, "Boat");
    for (const long long id : {40, 41, 42})
        project.object("Transition::Zoom", id, "");
    const Migrated plain = migrateOld(project.bytes(), false);
    ASSERT_FALSE(plain.error);
    EXPECT_TRUE(plain.bytes.contains("\"Quiz\""));
    const Migrated repaired = migrateOld(project.bytes(), true);
    expectWhole(repaired);
    const Project result = repaired.project();
    const auto& transitions = result.timeline("Film").at("transitions");
    ASSERT_EQ(transitions.size(), 3u);
    const auto ends = [&](std::size_t place) {
        std::vector<std::string> names;
        for (const char* end : {"clipFrom", "clipTo"})
            names.push_back(transitions[place].at(end).is_null()
                                ? "none"
                                : result.follow(transitions[place], end).at("name"));
        return names;
    };
    EXPECT_THAT(ends(0), ElementsAre("Beach", "none"));
    EXPECT_THAT(ends(1), ElementsAre("none", "Boat"));
    EXPECT_THAT(ends(2), ElementsAre("Beach", "Boat"));
    EXPECT_FALSE(repaired.bytes.contains("\"Quiz\""));
    EXPECT_THAT(repaired.repairs(), ElementsAre("quiz-links"));
}

// JSON of versions 59 to 61

QByteArray oldCollections() {
    return R"({"version":"1.0","schemaVersion":60,"data":{"@meta":{"class_name":"Project::PersistentObject","object_id":1},
        "content":{"@meta":{"class_name":"Project::Content","object_id":2},
        "timeline":{"@meta":{"class_name":"Timeline::Object","object_id":3},"name":"Film","tracks":[],
        "clips":[{"clip":{"@meta":{"class_name":"Timeline::Clip","object_id":4},"name":"Beach","type":1,"effects":[
        {"@meta":{"class_name":"Effect::Blur","object_id":5},"Effect::VideoEffect":{"@meta":{"class_name":"Effect::VideoEffect","object_id":6},
        "Effect::Object":{"@meta":{"class_name":"Effect::Object","object_id":7},"tag":"Blur","description":"Blur","location":"fx/blur",
        "remoteUrl":"fx://blur","remoteSize":12}}}]},
        "timing":{"@meta":{"class_name":"Timeline::ClipTiming","object_id":8},"timestamp":0,"duration":10,"track":null}}]},
        "userCollection":{"@meta":{"class_name":"EditorCollection::UserObject","object_id":9},"items":[
        {"@meta":{"class_name":"Collection::PersistentItem::Import::Object","object_id":10},"collectionId":"Media",
        "uniqueId":"beach","item":{"@meta":{"class_name":"Import::Object","object_id":11},"tag":"beach.mp4","description":"",
        "location":"media/beach.mp4","remoteUrl":"media://beach.mp4","remoteSize":2048}},
        {"@meta":{"class_name":"Collection::PersistentItem::Effect::Object","object_id":12},"collectionId":"Effects",
        "uniqueId":"blur","item":{"@meta_reference":5}}]}},
        "resourceTable":{"@meta":{"class_name":"ResourceTable::Object","object_id":13},"resource2fileInfo":[]}}})";
}

TEST(OldCollections, OfJsonGetTheClassesOfVersion62) {
    EXPECT_EQ(migrateOld(oldCollections(), false).failedStep(), "PortableLoadAdaptor");
    const Migrated repaired = migrateOld(oldCollections(), true);
    expectWhole(repaired);
    const Project project = repaired.project();
    const auto items = project.all("Collection::Item");
    ASSERT_EQ(items.size(), 2u);
    const auto& media = *items[0];
    EXPECT_EQ(media.at("downloadUrl"), "media://beach.mp4");
    EXPECT_EQ(media.at("remoteSize"), 2048);
    EXPECT_FALSE(media.contains("item"));
    const auto& import = project.follow(media, "payload");
    EXPECT_EQ(import.at("resourcePath"), "media/beach.mp4");
    EXPECT_FALSE(import.contains("location"));
    EXPECT_FALSE(import.contains("remoteUrl"));
    const auto& blur = *items[1];
    EXPECT_EQ(blur.at("downloadUrl"), "fx://blur");
    EXPECT_EQ(blur.at("remoteSize"), 12);
    const auto& effect = project.innermost(project.follow(blur, "payload"));
    EXPECT_EQ(effect.at("resourcePath"), "fx/blur");
    EXPECT_THAT(repaired.repairs(), ElementsAre("old-collections", "clips-without-track"));
    EXPECT_EQ(repaired.repair("old-collections").before, "V62_CollectionItemPayloadAdaptor");
}

TEST(UnnamedEntries, OfJsonGetTheirNames) {
    const QByteArray bytes =
        R"({"version":"1.0","schemaVersion":65,"data":{"@meta":{"class_name":"Timeline::Object","object_id":1},"name":"Film",
        "tracks":[{"@meta":{"class_name":"Timeline::Track","object_id":2},"type":16,"used":true,"hidden":false,
        "timeline":{"@meta_reference":1}}],"trackingLinks":[],"clips":[
        {"first":{"@meta":{"class_name":"Timeline::Clip","object_id":3},"name":"Beach","type":1},
        "second":{"@meta":{"class_name":"Timeline::ClipTiming","object_id":4},"timestamp":0,"duration":10,
        "track":{"@meta_reference":2}}},
        {"clip":{"@meta":{"class_name":"Timeline::Clip","object_id":5},"name":"Boat","type":1},
        "timing":{"@meta":{"class_name":"Timeline::ClipTiming","object_id":6},"timestamp":10,"duration":10,
        "track":{"@meta_reference":2}}}],
        "transitions":[{"first":{"@meta":{"class_name":"Transition::Crossfade","object_id":7}},
        "second":[{"first":{"@meta_reference":3},"second":{"@meta_reference":5}}]}],
        "links":[{"first":{"@meta_reference":5},"second":{"@meta":{"class_name":"Timeline::Link","object_id":8},
        "master":{"@meta_reference":3},"offset":1}}]}})";
    EXPECT_EQ(migrateOld(bytes, false).failedStep(), "V69_RemoveQuizzesAdaptor");
    const Migrated repaired = migrateOld(bytes, true);
    expectWhole(repaired);
    const Project project = repaired.project();
    EXPECT_THAT(clipNames(project, "Film"), ElementsAre("Beach", "Boat"));
    EXPECT_EQ(timingOf(project, "Film", "Beach").at("duration"), 10);
    const auto& transition = project.timeline("Film").at("transitions")[0];
    EXPECT_EQ(Project::classOf(project.follow(transition, "transition")), "Transition::Crossfade");
    EXPECT_EQ(project.follow(transition, "clipFrom").at("name"), "Beach");
    EXPECT_EQ(project.follow(transition, "clipTo").at("name"), "Boat");
    const auto& link = project.timeline("Film").at("links")[0];
    EXPECT_EQ(project.follow(link, "slave").at("name"), "Boat");
    EXPECT_EQ(project.follow(project.follow(link, "link"), "master").at("name"), "Beach");
    EXPECT_THAT(repaired.repairs(), ElementsAre("unnamed-entries"));
    EXPECT_THAT(namesOf(repaired.repair("unnamed-entries").clips()), ElementsAre("Beach", "Boat"));
}

TEST(OldCollections, AMissingPathOfALaterVersionIsEmpty) {
    const QByteArray bytes =
        R"({"version":"1.0","schemaVersion":70,"data":{"@meta":{"class_name":"Overlay::Preset","object_id":1},"tag":"a"}})";
    EXPECT_EQ(migrateOld(bytes, false).failedStep(), "PortableLoadAdaptor");
    const Migrated repaired = migrateOld(bytes, true);
    expectWhole(repaired);
    EXPECT_EQ(repaired.project().root().at("resourcePath"), "");
}

} // namespace
