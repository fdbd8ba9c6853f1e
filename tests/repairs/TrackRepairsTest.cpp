// Projects whose clips lie on tracks that the steps do not know, or on none.

#include "repairs/OldProject.h"

using testing::ElementsAre;
using testing::IsEmpty;
using Tests::clipNames;
using Tests::Entry;
using Tests::expectWhole;
using Tests::Migrated;
using Tests::migrateOld;
using Tests::namesOf;
using Tests::OldProject;
using Tests::Project;
using Tests::ref;
using Tests::timingOf;
using Tests::trackTypeOf;

namespace {

// Types of tracks at the newest version.
constexpr int primary = 1;
constexpr int sound = 4;
constexpr int overlays = 8;
constexpr int titles = 16;

std::string transition(long long milliseconds) {
    return Tests::number("transitionDuration", milliseconds);
}

/// A main timeline with a nested one, "Village", of two videos with a transition of a second and a title. `primary` and
/// `above` are the numbers of the tracks in the nested timeline.
OldProject village(int version, int primaryNumber, int titlesNumber, int mainNumber) {
    OldProject project(version);
    project.root(2).timeline(2, "Film", {{3, 4, mainNumber, 0, 5000, transition(0)}});
    project.clip(3, 64, "Village", ref("nestedTimeline", 10));
    project.timeline(10, "Village",
                     {{11, 12, primaryNumber, 0, 2000, transition(1000)},
                      {13, 14, primaryNumber, 1000, 3000, transition(0)},
                      {15, 16, titlesNumber, 500, 1000}});
    project.object("Transition::Crossfade", 20, "<BaseOfObject type='Transition::Object' objectId='20'/>");
    project.clip(11, 1, "Square", ref("transition", 20)).clip(13, 1, "Church");
    return project.title(15, "Welcome", 17);
}

TEST(SecondTimelines, OfVersion3KeepTheirTrackNumbersWithoutRepair) {
    const Migrated plain = migrateOld(village(3, 1, 4, 1).bytes(), false);
    EXPECT_EQ(plain.failedStep(), "V77_TitlesTrackAdaptor");
}

TEST(SecondTimelines, OfVersion3AreConvertedLikeTheFirst) {
    const Migrated repaired = migrateOld(village(3, 1, 4, 1).bytes(), true);
    expectWhole(repaired);
    const Project project = repaired.project();
    EXPECT_THAT(clipNames(project, "Film"), ElementsAre("Village"));
    EXPECT_THAT(clipNames(project, "Village"), ElementsAre("Square", "Church", "Welcome"));
    EXPECT_EQ(trackTypeOf(project, "Film", "Village"), primary);
    EXPECT_EQ(trackTypeOf(project, "Village", "Square"), primary);
    EXPECT_EQ(trackTypeOf(project, "Village", "Church"), primary);
    EXPECT_EQ(trackTypeOf(project, "Village", "Welcome"), titles);

    // The clips overlapped by the whole transition; now each lends it half a second, and they meet in its middle.
    const auto& square = timingOf(project, "Village", "Square");
    EXPECT_EQ(square.at("timestamp"), 0);
    EXPECT_EQ(square.at("duration"), 1500);
    EXPECT_EQ(square.at("transitionOut"), 500);
    const auto& church = timingOf(project, "Village", "Church");
    EXPECT_EQ(church.at("timestamp"), 1500);
    EXPECT_EQ(church.at("duration"), 2500);
    EXPECT_EQ(church.at("sourcePosition"), 500);
    EXPECT_EQ(church.at("transitionIn"), 500);
    const auto& transitions = project.timeline("Village").at("transitions");
    ASSERT_EQ(transitions.size(), 1u);
    EXPECT_EQ(project.follow(transitions[0], "clipFrom").at("name"), "Square");
    EXPECT_EQ(project.follow(transitions[0], "clipTo").at("name"), "Church");

    ASSERT_THAT(repaired.repairs(), ElementsAre("second-timelines", "second-timelines"));
    EXPECT_EQ(repaired.report.repairs[0].before, "V4_TrackValueAdaptor");
    EXPECT_EQ(repaired.report.repairs[1].before, "V22_TransitionsAdaptor");
    EXPECT_THAT(namesOf(repaired.report.repairs[0].clips()), ElementsAre("Square", "Church", "Welcome"));
    EXPECT_EQ(repaired.report.repairs[0].objects.front().id, 10u); // the timeline
}

TEST(SecondTimelines, OfLaterVersionsKeepOldNumbersThatAnEarlierMigrationLeft) {
    for (const int version : {4, 12, 21}) {
        const QByteArray bytes = village(version, 1, 4, 16).bytes();
        EXPECT_EQ(migrateOld(bytes, false).failedStep(), "V77_TitlesTrackAdaptor") << version;
        const Migrated repaired = migrateOld(bytes, true);
        expectWhole(repaired);
        EXPECT_EQ(trackTypeOf(repaired.project(), "Village", "Church"), primary) << version;
        EXPECT_EQ(trackTypeOf(repaired.project(), "Village", "Welcome"), titles) << version;
        EXPECT_EQ(timingOf(repaired.project(), "Village", "Church").at("timestamp"), 1500) << version;
        EXPECT_THAT(repaired.repairs(), ElementsAre("second-timelines")) << version;
    }
}

TEST(SecondTimelines, WithoutOldNumbersAndTransitionsNeedNoRepair) {
    OldProject project(12);
    project.root(2).timeline(2, "Film", {{3, 4, 16, 0, 5000, transition(0)}});
    project.clip(3, 64, "Village", ref("nestedTimeline", 10));
    project.timeline(10, "Village", {{11, 12, 16, 0, 2000, transition(0)}}).clip(11, 1, "Square");
    const Migrated repaired = migrateOld(project.bytes(), true);
    EXPECT_THAT(repaired.repairs(), IsEmpty());
    EXPECT_TRUE(repaired.bytes == migrateOld(project.bytes(), false).bytes);
}

/// A film whose clips lie on tracks of these numbers.
OldProject filmOn(int version, long long titleTrack, long long videoTrack, long long soundTrack) {
    OldProject project(version);
    project.root(2).timeline(2, "Film",
                             {{3, 4, 16, 0, 5000},
                              {5, 6, titleTrack, 1000, 2000},
                              {8, 9, videoTrack, 2000, 2000},
                              {10, 11, soundTrack, 0, 4000}});
    return project.clip(3, 1, "Beach").title(5, "Welcome", 7).clip(8, 1, "Inset").clip(10, 3, "Song");
}

TEST(ClipsWithoutTrack, NumbersThatTheVersionDoesNotKnow) {
    for (const auto& [unknown, version] : {std::pair(0, 12), std::pair(6, 12), std::pair(6, 26)}) {
        const QByteArray bytes = filmOn(version, unknown, unknown, unknown).bytes();
        EXPECT_EQ(migrateOld(bytes, false).failedStep(), "V77_TitlesTrackAdaptor") << unknown;
        const Migrated repaired = migrateOld(bytes, true);
        expectWhole(repaired);
        const Project project = repaired.project();
        EXPECT_EQ(trackTypeOf(project, "Film", "Beach"), primary) << unknown;
        EXPECT_EQ(trackTypeOf(project, "Film", "Welcome"), titles) << unknown;
        EXPECT_EQ(trackTypeOf(project, "Film", "Inset"), overlays) << unknown;
        EXPECT_EQ(trackTypeOf(project, "Film", "Song"), sound) << unknown;
        EXPECT_EQ(timingOf(project, "Film", "Welcome").at("timestamp"), 1000);
        EXPECT_THAT(repaired.repairs(), ElementsAre("clips-without-track"));
        EXPECT_THAT(namesOf(repaired.repair("clips-without-track").clips()),
                    ElementsAre("Welcome", "Inset", "Song"));
    }
}

TEST(ClipsWithoutTrack, AVideoOnNoTrackIsLostSilentlyWithoutRepair) {
    const QByteArray bytes = filmOn(12, 80, 6, 48).bytes();
    const Migrated plain = migrateOld(bytes, false);
    ASSERT_FALSE(plain.error);
    EXPECT_EQ(trackTypeOf(plain.project(), "Film", "Inset"), -1);
    const Migrated repaired = migrateOld(bytes, true);
    expectWhole(repaired);
    EXPECT_EQ(trackTypeOf(repaired.project(), "Film", "Inset"), overlays);
    EXPECT_EQ(trackTypeOf(repaired.project(), "Film", "Welcome"), titles);
}

TEST(ClipsWithoutTrack, KnownNumbersNeedNoRepair) {
    const QByteArray bytes = filmOn(12, 80, 64, 48).bytes();
    const Migrated repaired = migrateOld(bytes, true);
    expectWhole(repaired);
    EXPECT_THAT(repaired.repairs(), IsEmpty());
    EXPECT_TRUE(repaired.bytes == migrateOld(bytes, false).bytes);
}

TEST(ClipsWithoutTrack, ATrackThatIsNotListedIsListedAgain) {
    OldProject project(62);
    project.timeline(2, "Film", {{3, 4, 20, 0, 5000}, {5, 6, 21, 0, 3000}}, Tests::refs("tracks", {20}));
    project.tracks(2, {{20, 16}, {21, 64}}).clip(3, 1, "Beach").clip(5, 1, "Inset").root(2);
    EXPECT_EQ(trackTypeOf(migrateOld(project.bytes(), false).project(), "Film", "Inset"), -1);
    const Migrated repaired = migrateOld(project.bytes(), true);
    expectWhole(repaired);
    EXPECT_EQ(trackTypeOf(repaired.project(), "Film", "Inset"), overlays);
    EXPECT_EQ(repaired.project().timeline("Film").at("tracks").size(), 2u);
}

/// A timeline without a primary track that ends with a quiz.
QByteArray quizAtTheEnd() {
    OldProject project(62);
    project.timeline(2, "Film", {{3, 4, 21, 0, 5000}, {5, 6, 22, 5000, 3000}},
                     Tests::refs("tracks", {21, 22}));
    project.tracks(2, {{21, 64}, {22, 96}}).clip(3, 1, "Beach").clip(5, 32, "Quiz");
    return project.root(2).bytes();
}

TEST(ClipsWithoutTrack, TheTitleInPlaceOfAQuizGetsATrack) {
    EXPECT_EQ(migrateOld(quizAtTheEnd(), false).failedStep(), "V77_TitlesTrackAdaptor");
    const Migrated repaired = migrateOld(quizAtTheEnd(), true);
    expectWhole(repaired);
    const Project project = repaired.project();
    // The title keeps the length that the film had with the quiz.
    EXPECT_THAT(clipNames(project, "Film"), ElementsAre("Beach", "SimpleText"));
    EXPECT_EQ(trackTypeOf(project, "Film", "SimpleText"), titles);
    EXPECT_EQ(trackTypeOf(project, "Film", "Beach"), overlays);
    EXPECT_EQ(timingOf(project, "Film", "SimpleText").at("timestamp"), 5000);
    EXPECT_EQ(timingOf(project, "Film", "SimpleText").at("duration"), 3000);
    EXPECT_THAT(repaired.repairs(), ElementsAre("clips-without-track"));
}

} // namespace
