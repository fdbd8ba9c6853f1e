// Archives whose objects, references and lists do not fit each other.

#include "repairs/OldProject.h"

using testing::ElementsAre;
using testing::IsEmpty;
using Tests::clipNames;
using Tests::expectWhole;
using Tests::field;
using Tests::linesOf;
using Tests::list;
using Tests::Migrated;
using Tests::migrateOld;
using Tests::namesOf;
using Tests::OldProject;
using Tests::Project;
using Tests::ref;
using Tests::refs;
using Tests::text;
using Tests::timingOf;
using Tests::trackTypeOf;

namespace {

constexpr int primary = 1;

std::string transitionsOf(const Project& project) {
    std::string found;
    for (const nlohmann::json& entry : project.timeline("Film").at("transitions"))
        found += project.follow(entry, "clipFrom").at("name").get<std::string>() + " to " +
                 project.follow(entry, "clipTo").at("name").get<std::string>() + ';';
    return found;
}

/// A film of two videos and a title, with a transition between the videos. From version 35 on a content is its root,
/// unless `hasContent` is false.
OldProject film(int version, bool hasContent = true) {
    const bool hasTracks = version >= 27;
    OldProject project(version);
    project.root(2).timeline(2, "Film",
                             {{3, 4, hasTracks ? 20 : 16, 0, 5000, Tests::number("transitionHalf", 500)},
                              {5, 6, hasTracks ? 20 : 16, 5000, 3000, Tests::number("transitionHalf", 0)},
                              {7, 8, hasTracks ? 21 : 80, 1000, 2000, Tests::number("transitionHalf", 0)}},
                             hasTracks ? refs("tracks", {21, 20}) : "");
    if (hasTracks)
        project.tracks(2, {{20, 16}, {21, 80}});
    project.object("Transition::Crossfade", 30, "<BaseOfObject type='Transition::Object' objectId='30'/>");
    project.clip(3, 1, "Beach", ref("transition", 30) + ref("timeline", 2));
    if (version >= 35 && hasContent)
        project.content(40, 2);
    return project.clip(5, 1, "Boat", ref("timeline", 2)).title(7, "Welcome", 9);
}

void expectFilm(const Migrated& migrated) {
    expectWhole(migrated);
    if (migrated.error)
        return;
    const Project project = migrated.project();
    EXPECT_THAT(clipNames(project, "Film"), ElementsAre("Beach", "Boat", "Welcome"));
    EXPECT_EQ(trackTypeOf(project, "Film", "Beach"), primary);
    EXPECT_EQ(timingOf(project, "Film", "Boat").at("timestamp"), 5000);
    EXPECT_EQ(transitionsOf(project), "Beach to Boat;");
}

TEST(ArchiveRepairs, AHealthyProjectNeedsNone) {
    for (const int version : {22, 26, 28, 34, 45}) {
        const QByteArray bytes = film(version).bytes();
        const Migrated repaired = migrateOld(bytes, true);
        expectFilm(repaired);
        EXPECT_THAT(repaired.repairs(), IsEmpty()) << version;
        EXPECT_TRUE(repaired.bytes == migrateOld(bytes, false).bytes) << version;
    }
}

// Predeclarations

TEST(Predeclarations, AClipOfAnotherClass) {
    const QByteArray bytes = film(45).undeclared(5).declared(5, "File").bytes();
    EXPECT_EQ(migrateOld(bytes, false).failedStep(), "V69_RemoveQuizzesAdaptor");
    const Migrated repaired = migrateOld(bytes, true);
    expectFilm(repaired);
    EXPECT_THAT(repaired.repairs(), ElementsAre("predeclarations"));
    EXPECT_THAT(namesOf(repaired.repair("predeclarations").clips()), ElementsAre("Boat"));
}

TEST(Predeclarations, AClipDeclaredTwiceTheLaterTimeWrongly) {
    const QByteArray bytes = film(45).declared(5, "File").bytes();
    EXPECT_EQ(migrateOld(bytes, false).failedStep(), "V69_RemoveQuizzesAdaptor");
    const Migrated repaired = migrateOld(bytes, true);
    expectFilm(repaired);
    EXPECT_THAT(repaired.repairs(), ElementsAre("predeclarations"));
}

TEST(Predeclarations, AClipThatIsNotDeclared) {
    const QByteArray bytes = film(45).undeclared(5).bytes();
    EXPECT_EQ(migrateOld(bytes, false).failedStep(), "V69_RemoveQuizzesAdaptor");
    const Migrated repaired = migrateOld(bytes, true);
    expectFilm(repaired);
    const Reader::RepairMade& made = repaired.repair("predeclarations");
    EXPECT_EQ(made.count, 1u);
    EXPECT_EQ(made.before, "loading");
    ASSERT_EQ(made.objects.size(), 1u);
    EXPECT_EQ(made.objects[0].className, "Timeline::Clip");
    EXPECT_EQ(made.objects[0].id, 5u);
}

TEST(Predeclarations, ATransitionOfAnotherClassIsNoTransitionAnyMore) {
    const QByteArray bytes = film(45).undeclared(30).declared(30, "File").bytes();
    const Migrated plain = migrateOld(bytes, false);
    ASSERT_FALSE(plain.error);
    EXPECT_FALSE(plain.project().timeline("Film").at("transitions")[0].contains("clipFrom"));
    expectFilm(migrateOld(bytes, true));
}

TEST(Predeclarations, AnArchiveWithoutAnyLosesEverything) {
    const QByteArray bytes = film(34).withoutPredeclarator().bytes();
    const Migrated plain = migrateOld(bytes, false, 62);
    EXPECT_EQ(plain.report.clipsKept, 0u); // version 35 stops, so version 57 finds no content
    const Migrated repaired = migrateOld(bytes, true);
    expectFilm(repaired);
    EXPECT_THAT(repaired.repairs(), ElementsAre("predeclarations"));
    EXPECT_EQ(Project::classOf(repaired.project().root()), "Project::PersistentObject");
}

// Timelines and roots

TEST(ProjectContent, ATimelineAsTheRootLosesEverything) {
    const QByteArray bytes = film(45, false).bytes(); // its root is the timeline, as before version 35
    const Migrated plain = migrateOld(bytes, false);
    EXPECT_EQ(plain.report.clipsKept, 0u);
    const Migrated repaired = migrateOld(bytes, true);
    expectFilm(repaired);
    EXPECT_THAT(repaired.repairs(), ElementsAre("project-content"));
}

TEST(MissingTimeline, TheClipsFollowEachOther) {
    for (const int version : {3, 21, 34, 45, 56, 62}) {
        OldProject project(version);
        project.clip(3, 1, "Beach", Tests::number("sourceDuration", 4000) + ref("timeline", 2));
        project.clip(5, 1, "Boat", Tests::number("sourceDuration", 6000) + ref("timeline", 2));
        project.title(7, "Welcome", 9).root(2);
        const QByteArray bytes = project.bytes();
        EXPECT_TRUE(migrateOld(bytes, false).error) << version; // its root object is missing
        const Migrated repaired = migrateOld(bytes, true);
        expectWhole(repaired);
        ASSERT_FALSE(repaired.error) << version;
        const Project result = repaired.project();
        EXPECT_THAT(clipNames(result, ""), ElementsAre("Beach", "Boat", "Welcome")) << version;
        EXPECT_EQ(timingOf(result, "", "Boat").at("timestamp"), 4000) << version;
        EXPECT_EQ(timingOf(result, "", "Welcome").at("timestamp"), 10000) << version;
        EXPECT_EQ(trackTypeOf(result, "", "Beach"), primary) << version;
        EXPECT_EQ(result.follow(Tests::clipNamed(result, "Boat"), "timeline").at("name"), "") << version;
        EXPECT_THAT(namesOf(repaired.repair("missing-timeline").clips()),
                    ElementsAre("Beach", "Boat", "Welcome"));
    }
}

TEST(MissingTimeline, AContentWhoseTimelineIsMissing) {
    for (const int version : {45, 56}) {
        OldProject project(version);
        project.content(40, 2).clip(3, 1, "Beach");
        const Migrated plain = migrateOld(project.bytes(), false);
        ASSERT_FALSE(plain.error) << version;
        EXPECT_THAT(plain.project().all("Timeline::Clip"), IsEmpty()) << version; // lost without a word
        const Migrated repaired = migrateOld(project.bytes(), true);
        expectWhole(repaired);
        EXPECT_THAT(clipNames(repaired.project(), ""), ElementsAre("Beach")) << version;
    }
}

TEST(RootReference, LeadsToTheOutermostObjectAgain) {
    for (const int version : {26, 34}) {
        const QByteArray bytes = film(version).root(77).bytes();
        const Migrated plain = migrateOld(bytes, false);
        ASSERT_TRUE(plain.error);
        EXPECT_EQ(plain.error->kind(), Reader::ErrorKind::MissingRoot);
        const Migrated repaired = migrateOld(bytes, true);
        expectFilm(repaired);
        EXPECT_THAT(repaired.repairs(), ElementsAre("root-reference"));
    }
    const Migrated repaired = migrateOld(film(45).root(77).bytes(), true);
    expectFilm(repaired);
    EXPECT_EQ(repaired.repair("root-reference").objects.at(0).id, 40u);
}

TEST(RootReference, ThatIsMissingIsMade) {
    QByteArray bytes = film(34).bytes();
    bytes.replace("<RootRef type='ObjectRef' value='2'/>", "");
    EXPECT_TRUE(migrateOld(bytes, false).error);
    expectFilm(migrateOld(bytes, true));
}

TEST(RootReference, LeadsToTheTimelineThatIsNotNested) {
    OldProject project(34);
    project.timeline(10, "Village", {{11, 12, 30, 0, 2000}}, refs("tracks", {30}));
    project.tracks(10, {{30, 16}}).clip(11, 1, "Square");
    project.timeline(2, "Film", {{3, 4, 20, 0, 5000}}, refs("tracks", {20}));
    project.tracks(2, {{20, 16}}).clip(3, 64, "Village", ref("nestedTimeline", 10)).root(77);
    const Migrated repaired = migrateOld(project.bytes(), true);
    expectWhole(repaired);
    const Project result = repaired.project();
    const auto& content = result.follow(result.root(), "content");
    EXPECT_EQ(result.follow(content, "timeline").at("name"), "Film");
}

TEST(RootReference, LeadsToTheFirstOfTimelinesThatAreNestedInEachOther) {
    OldProject project(34);
    project.timeline(2, "Film", {{3, 4, 20, 0, 5000}}, refs("tracks", {20}));
    project.tracks(2, {{20, 16}}).clip(3, 64, "Village", ref("nestedTimeline", 10));
    project.timeline(10, "Village", {{11, 12, 30, 0, 2000}}, refs("tracks", {30}));
    project.tracks(10, {{30, 16}}).clip(11, 64, "Film again", ref("nestedTimeline", 2)).root(77);
    const Migrated repaired = migrateOld(project.bytes(), true);
    expectWhole(repaired);
    const Project result = repaired.project();
    const auto& content = result.follow(result.root(), "content");
    EXPECT_EQ(result.follow(content, "timeline").at("name"), "Film");
}

// Ids

TEST(SharedIds, AClipAndAFileWithOneId) {
    OldProject project = film(34);
    project.object("File", 5, text("path", "boat.mp4")).clip(50, 1, "Inset", ref("file", 5));
    QByteArray bytes = project.bytes();
    EXPECT_EQ(migrateOld(bytes, false).failedStep(), "V69_RemoveQuizzesAdaptor"); // the clip is a file
    const Migrated repaired = migrateOld(bytes, true);
    expectFilm(repaired);
    EXPECT_EQ(repaired.repairs().front(), "shared-ids");
    EXPECT_EQ(repaired.repair("shared-ids").count, 1u);
}

TEST(SharedIds, EachReferenceLeadsToTheObjectOfItsClass) {
    OldProject project = film(34);
    project.object("File", 5, text("path", "boat.mp4"));
    QByteArray bytes = project.bytes();
    bytes.replace("<name type='String' value='Beach'/>",
                  "<name type='String' value='Beach'/><file type='ObjectRef' value='5'/>");
    const Migrated repaired = migrateOld(bytes, true);
    expectFilm(repaired);
    const Project result = repaired.project();
    EXPECT_EQ(Project::classOf(result.follow(Tests::clipNamed(result, "Beach"), "file")), "File");
}

TEST(SharedIds, TheRootReferenceLeadsToTheLastObject) {
    OldProject project(34);
    project.object("File", 2, text("path", "boat.mp4"));
    project.root(2).timeline(2, "Film", {{3, 4, 20, 0, 5000}}, refs("tracks", {20}));
    project.tracks(2, {{20, 16}}).clip(3, 1, "Beach");
    const Migrated repaired = migrateOld(project.bytes(), true);
    expectWhole(repaired);
    EXPECT_THAT(clipNames(repaired.project(), "Film"), ElementsAre("Beach"));
    EXPECT_EQ(repaired.repair("shared-ids").count, 1u);
}

TEST(SharedIds, TwoClipsOfATimelineWithOneId) {
    OldProject project(34);
    project.root(2).timeline(2, "Film", {{3, 4, 20, 0, 5000}, {3, 6, 20, 5000, 3000}}, refs("tracks", {20}));
    project.tracks(2, {{20, 16}}).clip(3, 1, "Beach").clip(3, 1, "Boat");
    const Migrated plain = migrateOld(project.bytes(), false);
    ASSERT_FALSE(plain.error);
    EXPECT_THAT(clipNames(plain.project(), "Film"), ElementsAre("Boat", "Boat")); // Beach is lost
    const Migrated repaired = migrateOld(project.bytes(), true);
    expectWhole(repaired);
    EXPECT_THAT(clipNames(repaired.project(), "Film"), ElementsAre("Beach", "Boat"));
    EXPECT_EQ(timingOf(repaired.project(), "Film", "Boat").at("timestamp"), 5000);
}

constexpr long long wide = 5000000000; // above 32 bits

TEST(WideIds, AChromaKeyWithAWideIdGivesEveryClipACutaway) {
    const auto build = [](long long chromaKey, long long blur) {
        const auto effect = [](long long id) {
            return Tests::embedded("BaseOfObject", "Effect::VideoEffect", id,
                                   Tests::embedded("BaseOfObject", "Effect::Object", id,
                                                   field("uniqueId", "uint32_t", "3") + text("tag", "") +
                                                       field("id", "uint32_t", "3")));
        };
        OldProject project(7);
        project.root(2).timeline(2, "Film", {{3, 4, 16, 0, 5000}, {5, 6, 16, 5000, 3000}});
        project.object("Effect::ChromaKey", chromaKey, effect(chromaKey));
        project.object("Effect::Blur", blur, effect(blur));
        project.clip(3, 1, "Beach", refs("effects", {chromaKey}));
        return project.clip(5, 1, "Boat", refs("effects", {blur})).bytes();
    };
    const auto effectsOf = [](const Migrated& migrated, const char* clip) {
        const Project project = migrated.project();
        return Tests::clipNamed(project, clip).at("effects").size();
    };
    // A chroma key gets a picture-in-picture beside it, and a blur nothing.
    const Migrated narrow = migrateOld(build(10, 11), true);
    EXPECT_THAT(narrow.repairs(), IsEmpty());
    EXPECT_EQ(effectsOf(narrow, "Beach"), 2u);
    EXPECT_EQ(effectsOf(narrow, "Boat"), 1u);

    const QByteArray bytes = build(wide, wide + 1);
    EXPECT_EQ(effectsOf(migrateOld(bytes, false), "Boat"), 2u);
    const Migrated repaired = migrateOld(bytes, true);
    expectWhole(repaired);
    EXPECT_EQ(effectsOf(repaired, "Beach"), 2u);
    EXPECT_EQ(effectsOf(repaired, "Boat"), 1u);
    EXPECT_THAT(repaired.repairs(), ElementsAre("wide-ids"));
    EXPECT_EQ(repaired.repair("wide-ids").count, 2u);
}

TEST(WideIds, ACompositionWithAWideIdStays) {
    OldProject project = film(22);
    project.object("File", 40, text("path", "a.mp4") + ref("composition", wide));
    project.object("Composition::Object", wide, refs("markers", {wide + 1}) + list("ranges", {}));
    project.object("Composition::Marker", wide + 1, "");
    QByteArray bytes = project.bytes();
    const auto count = [](const Migrated& migrated) { return migrated.bytes.count("Composition::"); };
    const Migrated plain = migrateOld(bytes, false, 62);
    EXPECT_GT(count(plain), 0);
    const Migrated repaired = migrateOld(bytes, true, 62);
    ASSERT_FALSE(repaired.error);
    EXPECT_EQ(count(repaired), 0); // also their predeclarations
    expectFilm(migrateOld(bytes, true));
}

TEST(WideIds, GetUnusedOnesWhereNoneAreLeftAboveThoseInUse) {
    OldProject project(7);
    project.root(2).timeline(2, "Film", {{3, 4, 16, 0, 5000}});
    project.object("File", 2147483647, text("path", "beach.mp4"));
    project.object("File", wide, text("path", "boat.mp4"));
    project.clip(3, 1, "Beach", ref("file", wide));
    const Migrated repaired = migrateOld(project.bytes(), true);
    expectWhole(repaired);
    const Project result = repaired.project();
    EXPECT_EQ(result.follow(Tests::clipNamed(result, "Beach"), "file").at("path"), "boat.mp4");
    EXPECT_EQ(repaired.repair("wide-ids").count, 1u);
    // No id is used twice, and none is wide.
    const Migrated archive = migrateOld(project.bytes(), true, 24);
    EXPECT_FALSE(archive.bytes.contains(QByteArray::number(wide)));
    EXPECT_EQ(archive.bytes.count("objectId=\"2147483647\""), 1);
}

// References and lists

TEST(DanglingReferences, AClipThatIsMissingTakesAllTransitionsWithIt) {
    QByteArray bytes = film(34).bytes();
    bytes.replace("<Key type='ObjectRef' value='7'/>", "<Key type='ObjectRef' value='88'/>");
    EXPECT_EQ(migrateOld(bytes, false).failedStep(), "V69_RemoveQuizzesAdaptor");
    // Version 46 stops at the clip, and converts no transition.
    EXPECT_FALSE(migrateOld(bytes, false, 56).bytes.contains("<transitions"));
    EXPECT_TRUE(migrateOld(bytes, true, 56).bytes.contains("<transitions"));
    const Migrated repaired = migrateOld(bytes, true);
    expectWhole(repaired);
    EXPECT_THAT(clipNames(repaired.project(), "Film"), ElementsAre("Beach", "Boat"));
    EXPECT_EQ(transitionsOf(repaired.project()), "Beach to Boat;");
    EXPECT_THAT(repaired.repairs(), ElementsAre("dangling-references"));
    EXPECT_EQ(repaired.repair("dangling-references").objects.at(0).id, 2u);
}

TEST(DanglingReferences, FieldsAndEntriesOfLists) {
    OldProject project(62);
    project.root(2).timeline(2, "Film", {{3, 4, 20, 0, 5000}}, refs("tracks", {20, 66}));
    project.tracks(2, {{20, 16}});
    project.clip(3, 1, "Beach", ref("file", 67) + refs("effects", {68}) + ref("timeline", 69));
    // The track that is missing became an object without a class and a type.
    EXPECT_EQ(migrateOld(project.bytes(), false).failedStep(), "V77_TitlesTrackAdaptor");
    const Migrated repaired = migrateOld(project.bytes(), true);
    expectWhole(repaired);
    const Project result = repaired.project();
    const auto& clip = Tests::clipNamed(result, "Beach");
    EXPECT_TRUE(clip.at("file").is_null());
    EXPECT_TRUE(clip.at("effects").empty());
    EXPECT_EQ(result.follow(clip, "timeline").at("name"), "Film");
    EXPECT_EQ(repaired.repair("dangling-references").count, 4u);
    for (const auto& [id, object] : result.objects())
        EXPECT_NE(Project::classOf(object), "") << id;
}

TEST(DanglingReferences, OfJsonDocuments) {
    const QByteArray bytes =
        R"({"version":"1.0","schemaVersion":70,"data":{"@meta":{"class_name":"Timeline::Object","object_id":1},
        "name":"Film","tracks":[{"@meta":{"class_name":"Timeline::Track","object_id":5},"type":16,"used":true,
        "hidden":false,"timeline":{"@meta_reference":1}},{"@meta_reference":66}],
        "clips":[{"clip":{"@meta":{"class_name":"Timeline::Clip","object_id":2},"name":"Beach","type":1,
        "file":{"@meta_reference":67}},"timing":{"@meta":{"class_name":"Timeline::ClipTiming","object_id":3},
        "timestamp":0,"duration":10,"track":{"@meta_reference":5}}},
        {"clip":{"@meta_reference":68},"timing":{"@meta":{"class_name":"Timeline::ClipTiming","object_id":4},
        "timestamp":0,"duration":10,"track":{"@meta_reference":5}}}]}})";
    EXPECT_EQ(migrateOld(bytes, false).failedStep(), "V77_TitlesTrackAdaptor");
    const Migrated repaired = migrateOld(bytes, true);
    expectWhole(repaired);
    EXPECT_THAT(clipNames(repaired.project(), "Film"), ElementsAre("Beach"));
    EXPECT_THAT(repaired.repairs(), ElementsAre("dangling-references"));
    EXPECT_TRUE(Tests::clipNamed(repaired.project(), "Beach").at("file").is_null());
}

/// A film whose clip has a mask with a frame, at version 50.
OldProject masked() {
    OldProject project(50);
    project.content(40, 2).timeline(2, "Film", {{3, 4, 20, 0, 5000}}, refs("tracks", {20}));
    project.tracks(2, {{20, 16}}).clip(3, 1, "Beach", refs("effects", {10}));
    project.object("Effect::MaskHighlight", 10,
                   Tests::small("method", 1) + Tests::real("opacity", 0.5) + Tests::real("smoothness", 0.25) +
                       list("frames", {Tests::embedded("Data", "Effect::FrameHighlight", 11,
                                                       Tests::small("shape", 1))}));
    return project.declared(11, "Effect::FrameHighlight");
}

TEST(ArraySizes, AListOfEffectsThatSaysItIsEmptyKeepsItsOldMask) {
    QByteArray bytes = masked().bytes();
    bytes.replace("<effects type='Array' size='1'>", "<effects type='Array' size='0'>");
    const Migrated plain = migrateOld(bytes, false);
    ASSERT_FALSE(plain.error);
    EXPECT_THAT(plain.project().all("Effect::Mask"), IsEmpty());
    const Migrated repaired = migrateOld(bytes, true);
    expectWhole(repaired);
    ASSERT_EQ(repaired.project().all("Effect::Mask").size(), 1u);
    EXPECT_EQ(repaired.project().all("Effect::Mask")[0]->at("highlightFrames").size(), 1u);
    EXPECT_THAT(repaired.repairs(), ElementsAre("array-sizes"));
    EXPECT_THAT(namesOf(repaired.repair("array-sizes").clips()), ElementsAre("Beach"));
}

TEST(ArraySizes, APairThatSaysItIsTwoIsNoTransition) {
    QByteArray bytes = migrateOld(film(45).bytes(), false, 56).bytes;
    const QByteArray pair = "<Value size=\"1\" type=\"Array\">";
    ASSERT_TRUE(bytes.contains(pair)) << bytes.toStdString();
    bytes.replace(pair, "<Value size=\"2\" type=\"Array\">");
    const Migrated plain = migrateOld(bytes, false);
    ASSERT_FALSE(plain.error);
    EXPECT_FALSE(plain.project().timeline("Film").at("transitions")[0].contains("clipFrom"));
    const Migrated repaired = migrateOld(bytes, true);
    expectFilm(repaired);
    EXPECT_THAT(repaired.repairs(), ElementsAre("array-sizes"));
}

} // namespace
