// What the page of `report` says of clips, timelines and lists, from facts that are made by hand.

#include "report/Films.h"
#include "report/Page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <memory>

using Reader::ClipKind;
using Reader::Loss;
using Reader::PartKind;
using Reader::Timeline;
using Reader::TimelineClip;
using Reader::TrackKind;
using ReportPage::Clips;
using ReportPage::Facts;
using ReportPage::Film;
using ReportPage::Moment;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using Timelines = ReportPage::Timelines;

namespace {

constexpr const char* step = "V70_SomeAdaptor";

TimelineClip clipOf(unsigned long long id, const std::string& name) {
    TimelineClip clip;
    clip.id = id;
    clip.className = "Timeline::Clip";
    clip.name = name;
    clip.kind = ClipKind::Video;
    clip.duration = 5000;
    return clip;
}

TimelineClip beach() {
    return clipOf(2, "Beach");
}

Timeline timelineOf(std::vector<TimelineClip> clips, unsigned long long id = 1,
                    Timeline::Role role = Timeline::Role::Main) {
    Timeline timeline;
    timeline.id = id;
    timeline.role = role;
    timeline.name = "Holiday";
    timeline.tracks = {{3, TrackKind::Main}};
    timeline.clips = std::move(clips);
    return timeline;
}

/// A migration of one step.
Facts factsOf(Timelines before, Timelines after) {
    Facts facts;
    facts.name = "film.xml";
    facts.effects.push_back({step, "Something changes.", {}, {}, {{"Timeline::Clip", 1}}, {}});
    facts.states.push_back({"", false, 0, std::make_shared<const Timelines>(std::move(before))});
    facts.states.push_back({step, false, 0, std::make_shared<const Timelines>(std::move(after))});
    return facts;
}

Facts factsOf(const TimelineClip& before, const TimelineClip& after) {
    return factsOf({timelineOf({before})}, {timelineOf({after})});
}

/// A loss that no schema version intended, of something that the project used.
Loss lossOf(PartKind kind, unsigned long long id, unsigned long long clip) {
    return {{kind, id, "A::Class", "Thing", clip}, "", "nobody knows why"};
}

Reader::LogLine lineAbout(const TimelineClip& clip, const char* severity) {
    return {step, severity, "odd", "a.cpp:1",
            Reader::LoggedObject{
                "Effect::Blur", 9,
                Reader::Part{PartKind::Clip, clip.id, clip.className, clip.name, clip.id, 65000}}};
}

// Clips

/// What becomes of the clip Beach by that change.
std::string fateAfter(const std::function<void(TimelineClip& clip)>& change) {
    TimelineClip after = beach();
    change(after);
    const Facts facts = factsOf(beach(), after);
    return fateText(Clips(facts).all().at(0));
}

TEST(ReportClips, ChangesAreNamed) {
    EXPECT_EQ(fateAfter([](TimelineClip&) {}), "kept");
    EXPECT_EQ(fateAfter([](TimelineClip& clip) { clip.name = "Coast"; }), "changed: now named \"Coast\"");
    EXPECT_EQ(fateAfter([](TimelineClip& clip) { clip.name = ""; }), "changed: now named nothing");
    EXPECT_EQ(fateAfter([](TimelineClip& clip) { clip.kind = ClipKind::Image; }), "changed: now image");
    EXPECT_EQ(fateAfter([](TimelineClip& clip) { clip.isEnabled = false; }), "changed: now switched off");
    EXPECT_EQ(fateAfter([](TimelineClip& clip) {
                  clip.start = 3600000;
                  clip.duration = 7500;
              }),
              "changed: now at 1:00:00, now 0:07.500 long");
}

TEST(ReportClips, AClipThatIsSwitchedOn) {
    TimelineClip before = beach();
    before.isEnabled = false;
    const Facts facts = factsOf(before, beach());
    EXPECT_EQ(fateText(Clips(facts).all().at(0)), "changed: now switched on");
}

TEST(ReportClips, AClipThatNoTimelineHasAnyMoreIsRemovedByTheStep) {
    const Facts facts =
        factsOf({timelineOf({beach(), clipOf(4, "Boat")})}, {timelineOf({clipOf(4, "Boat")})});
    const Clips clips(facts);
    EXPECT_EQ(fateText(clips.all().at(0)), "removed by V70: it is on no timeline any more");
    EXPECT_TRUE(clips.all().at(0).isGone());
    EXPECT_FALSE(clips.all().at(0).hasErrors());
    EXPECT_EQ(fateText(clips.all().at(1)), "kept");
}

TEST(ReportClips, AnEntryWithoutAClip) {
    TimelineClip nothing;
    nothing.id = 9;
    const Facts facts = factsOf({timelineOf({nothing})}, {timelineOf({})});
    EXPECT_EQ(fateText(Clips(facts).all().at(0)), "removed by V70: the project has no such object");
}

TEST(ReportClips, AClipThatAStepAdded) {
    const Facts facts = factsOf({timelineOf({})}, {timelineOf({beach()})});
    EXPECT_EQ(fateText(Clips(facts).all().at(0)), "added by V70");
}

TEST(ReportClips, AClipOfATimelineThatNothingUsesAnyMoreIsGone) {
    const Facts facts = factsOf({timelineOf({beach()}, 1, Timeline::Role::Nested)},
                                {timelineOf({beach()}, 1, Timeline::Role::Unused)});
    // The timeline still has it, so no step took it away.
    EXPECT_EQ(fateText(Clips(facts).all().at(0)), "removed: it is on no timeline any more");
}

TEST(ReportClips, AClipOfATimelineThatWasNeverUsedIsKept) {
    const Timeline unused = timelineOf({beach()}, 1, Timeline::Role::Unused);
    const Facts facts = factsOf({unused}, {unused});
    EXPECT_EQ(fateText(Clips(facts).all().at(0)), "kept");
}

TEST(ReportClips, IdsThatTheConversionChanged) {
    Facts facts = factsOf(beach(), clipOf(7, "Beach"));
    facts.redirected = {{2, 7}};
    facts.report.formBefore = Bundle::Backend::Xml;
    ASSERT_EQ(Clips(facts).all().size(), 1U);
    EXPECT_EQ(fateText(Clips(facts).all().at(0)), "kept");
    // Documents that are JSON already are not converted.
    facts.report.formBefore = Bundle::Backend::Json;
    ASSERT_EQ(Clips(facts).all().size(), 2U);
    EXPECT_EQ(fateText(Clips(facts).all().at(0)), "removed by V70: it is on no timeline any more");
    EXPECT_EQ(fateText(Clips(facts).all().at(1)), "added by V70");
}

TEST(ReportClips, ALossSaysMoreThanTheTimelines) {
    Facts facts = factsOf(beach(), beach()); // the timeline lists it, but the result does not have it
    facts.report.losses = {lossOf(PartKind::Clip, 2, 2)};
    EXPECT_EQ(fateText(Clips(facts).all().at(0)), "lost: nobody knows why");
    EXPECT_TRUE(Clips(facts).all().at(0).hasErrors());
    facts.report.losses[0].isIntended = true;
    facts.report.losses[0].step = "V69_RemoveQuizzesAdaptor";
    EXPECT_EQ(fateText(Clips(facts).all().at(0)), "removed by V69: nobody knows why");
    EXPECT_FALSE(Clips(facts).all().at(0).hasErrors());
}

TEST(ReportClips, WhatNothingUsedIsLeftOutByNoStep) {
    Facts facts = factsOf({timelineOf({beach()})}, {timelineOf({})});
    facts.report.losses = {lossOf(PartKind::Clip, 2, 2)};
    facts.report.losses[0].wasUsed = false;
    EXPECT_EQ(fateText(Clips(facts).all().at(0)), "left out: nobody knows why");
    EXPECT_FALSE(Clips(facts).all().at(0).hasErrors());
}

TEST(ReportClips, AnEffectThatIsLostIsAnErrorOfItsClip) {
    Facts facts = factsOf(beach(), beach());
    facts.report.losses = {lossOf(PartKind::Effect, 9, 2)};
    EXPECT_TRUE(Clips(facts).all().at(0).hasErrors());
    facts.report.losses[0].wasUsed = false;
    EXPECT_FALSE(Clips(facts).all().at(0).hasErrors());
    facts.report.losses[0] = lossOf(PartKind::Effect, 9, 4711); // of another clip
    EXPECT_THAT(Clips(facts).all().at(0).lostParts, IsEmpty());
}

TEST(ReportClips, LinesAboutAClip) {
    Facts facts = factsOf(beach(), beach());
    facts.report.log = {lineAbout(beach(), "WARNING"),
                        lineAbout(clipOf(4711, "Boat"), "ERROR"),
                        {step, "ERROR", "about nothing", "a.cpp:1"},
                        {step, "ERROR", "about no clip", "a.cpp:1", Reader::LoggedObject{"File", 8}}};
    EXPECT_EQ(Clips(facts).all().at(0).lines.size(), 1U);
    EXPECT_FALSE(Clips(facts).all().at(0).hasErrors());
    facts.report.log.push_back(lineAbout(beach(), "ERROR"));
    EXPECT_TRUE(Clips(facts).all().at(0).hasErrors());
}

TEST(ReportClips, Times) {
    EXPECT_EQ(ReportPage::timeText(0), "0:00");
    EXPECT_EQ(ReportPage::timeText(3599000), "59:59");
    EXPECT_EQ(ReportPage::timeText(3723500), "1:02:03.500");
    EXPECT_EQ(ReportPage::timeText(-5007), "-0:05.007");
    EXPECT_EQ(ReportPage::timeText(LLONG_MIN), "-2562047788015:12:55.808");
}

TEST(ReportClips, NamesOfSteps) {
    EXPECT_EQ(ReportPage::shortStep("V69_RemoveQuizzesAdaptor"), "V69");
    EXPECT_EQ(ReportPage::shortStep("XmlToJson"), "XmlToJson");
    EXPECT_EQ(ReportPage::shortStep("second_timelines"), "second_timelines");
}

TEST(ReportClips, AClipWithoutNameAndTrack) {
    TimelineClip clip = clipOf(2, "");
    clip.track = 5;
    EXPECT_EQ(ReportPage::nameFor(clip, timelineOf({})),
              "Clip without a name, track unknown, 0:00\u20130:05, video");
}

// Pictures

/// The picture of the only timeline.
std::string pictureOf(const Facts& facts, Moment moment = Moment::After) {
    const Clips clips(facts);
    return picture(filmsOf(facts, clips, 10).at(0), moment, clips, "Timeline");
}

TEST(ReportPictures, ShowEffectsAndWhatIsReversedOrOff) {
    TimelineClip clip = beach();
    clip.isReversed = true;
    clip.isEnabled = false;
    EXPECT_THAT(pictureOf(factsOf(clip, clip)), HasSubstr(">video \u00b7 reversed \u00b7 off<"));
    EXPECT_THAT(pictureOf(factsOf(clip, clip)), HasSubstr("<svg class=\"clip video off\""));
    clip.effects = {{5, "Effect::Blur", ""}, {6, "Effect::Crop", ""}};
    clip.isReversed = false;
    EXPECT_THAT(pictureOf(factsOf(clip, clip)), HasSubstr(">video \u00b7 2 effects \u00b7 off<"));
    clip.isEnabled = true;
    EXPECT_THAT(pictureOf(factsOf(clip, clip)),
                HasSubstr(", 0:00\u20130:05, video, 2 effects, kept</title>"));
}

TEST(ReportPictures, ShowWhatBecameOfAClip) {
    TimelineClip coast = beach();
    coast.name = "Coast";
    EXPECT_THAT(pictureOf(factsOf(beach(), coast)), HasSubstr("<svg class=\"clip video changed\""));
    EXPECT_THAT(pictureOf(factsOf(beach(), coast)), HasSubstr(">\u2260 Coast<"));
    const Facts added = factsOf({timelineOf({})}, {timelineOf({beach()})});
    EXPECT_THAT(pictureOf(added), HasSubstr("<svg class=\"clip video added\""));
    EXPECT_THAT(pictureOf(added), HasSubstr(">+ Beach<"));
    Facts gone = factsOf({timelineOf({beach()})}, {timelineOf({})});
    EXPECT_THAT(pictureOf(gone, Moment::Before), HasSubstr("<svg class=\"clip video gone\""));
    EXPECT_THAT(pictureOf(gone, Moment::Before), HasSubstr("<rect class=\"hatch\"/>"));
    EXPECT_THAT(pictureOf(gone, Moment::Before), HasSubstr(">\u00d7 Beach<"));
    gone.report.losses = {lossOf(PartKind::Clip, 2, 2)};
    EXPECT_THAT(pictureOf(gone, Moment::Before), HasSubstr("<svg class=\"clip video gone lost bad\""));
    EXPECT_THAT(pictureOf(gone, Moment::Before), HasSubstr(">! Beach<"));
}

TEST(ReportPictures, CountProblems) {
    Facts facts = factsOf(beach(), beach());
    facts.report.log = {lineAbout(beach(), "WARNING")};
    EXPECT_THAT(pictureOf(facts), HasSubstr(", kept, 1 warning</title>"));
    facts.report.log.push_back(lineAbout(beach(), "ERROR"));
    facts.report.log.push_back(lineAbout(beach(), "ERROR"));
    EXPECT_THAT(pictureOf(facts),
                HasSubstr(", kept, 2 errors</title>")); // warnings don't count beside errors
    facts.report.losses = {lossOf(PartKind::Effect, 8, 2), lossOf(PartKind::Title, 9, 2)};
    EXPECT_THAT(pictureOf(facts), HasSubstr(", kept, 2 errors, 1 effect lost, 1 title lost</title>"));
    facts.report.losses[0].isIntended = true;
    EXPECT_THAT(pictureOf(facts), HasSubstr(", kept, 2 errors, 1 title lost</title>"));
}

TEST(ReportPictures, TracksThatAreMutedOrHidden) {
    Timeline timeline = timelineOf({beach()});
    timeline.tracks = {{3, TrackKind::Main, true, false}, {4, TrackKind::Audio, false, true}};
    EXPECT_THAT(pictureOf(factsOf({timeline}, {timeline})),
                HasSubstr("<span>main<small>muted</small></span><span>audio<small>hidden</small></span>"));
}

TEST(ReportPictures, ATransitionNamesTheClipsThatItHas) {
    Timeline timeline = timelineOf({beach(), clipOf(4, "Boat")});
    timeline.transitions = {{8, "Transition::Fade", "", 2, 4, 2000}};
    EXPECT_THAT(pictureOf(factsOf({timeline}, {timeline})),
                HasSubstr("<title>Transition Fade, 0:02 long, from Beach, to Boat</title>"));
    timeline.transitions[0].to = 0;
    EXPECT_THAT(pictureOf(factsOf({timeline}, {timeline})),
                HasSubstr("<title>Transition Fade, 0:02 long, from Beach</title>"));
    timeline.clips[0].name.clear();
    timeline.transitions[0].to = 4;
    EXPECT_THAT(pictureOf(factsOf({timeline}, {timeline})),
                HasSubstr("<title>Transition Fade, 0:02 long, to Boat</title>"));
    // It is drawn at the clip before it; without that there is no place for it.
    timeline.transitions[0].from = 0;
    EXPECT_THAT(pictureOf(factsOf({timeline}, {timeline})), Not(HasSubstr("Transition Fade")));
}

// Timelines

TEST(ReportFilms, TheMainTimelineIsOneWhateverItsIds) {
    const Facts facts = factsOf({timelineOf({beach()}, 1)}, {timelineOf({beach()}, 7)});
    const Clips clips(facts);
    const auto films = filmsOf(facts, clips, 10);
    ASSERT_EQ(films.size(), 1U);
    EXPECT_EQ(films[0].id, 7U);
    EXPECT_NE(films[0].before, nullptr);
    EXPECT_NE(films[0].after, nullptr);
    // Each state has it under its own id.
    for (const ReportPage::State& state : facts.states)
        EXPECT_EQ(timelineIn(state, films[0], clips), &state.timelines->at(0)) << state.name;
}

TEST(ReportFilms, ATimelineThatOnlyTheResultHas) {
    const Timeline scene = timelineOf({clipOf(4, "Boat")}, 8, Timeline::Role::Nested);
    const Facts facts = factsOf({timelineOf({beach()})}, {timelineOf({beach()}), scene});
    const Clips clips(facts);
    const auto films = filmsOf(facts, clips, 10);
    ASSERT_EQ(films.size(), 2U);
    EXPECT_EQ(films[1].before, nullptr);
    EXPECT_EQ(&films[1].shown(), films[1].after);
    EXPECT_EQ(picture(films[1], Moment::Before, clips, "Timeline"), "");
    EXPECT_THAT(picture(films[1], Moment::After, clips, "Timeline"), HasSubstr(">+ Boat<"));
    EXPECT_EQ(filmsOf(facts, clips, 1).size(), 1U);
}

TEST(ReportFilms, EmptyTimelinesThatNothingShowsAreLeftOut) {
    const Timeline empty = timelineOf({}, 8, Timeline::Role::Unused);
    const Facts facts = factsOf({timelineOf({beach()}), empty}, {timelineOf({beach()}), empty});
    EXPECT_EQ(filmsOf(facts, Clips(facts), 10).size(), 1U);
    // With a clip they are shown, and so are empty ones that are in use.
    const Timeline full = timelineOf({clipOf(4, "Boat")}, 8, Timeline::Role::Unused);
    const Facts withFull = factsOf({timelineOf({beach()}), full}, {timelineOf({beach()}), full});
    EXPECT_EQ(filmsOf(withFull, Clips(withFull), 10).size(), 2U);
    const Facts added = factsOf({timelineOf({beach()})},
                                {timelineOf({beach()}), empty, timelineOf({}, 9, Timeline::Role::Nested)});
    EXPECT_EQ(filmsOf(added, Clips(added), 10).size(), 2U);
}

TEST(ReportFilms, ATimelineThatNothingUsesAnyMoreIsNotInTheResult) {
    const Facts facts = factsOf({timelineOf({beach()}, 1, Timeline::Role::Nested)},
                                {timelineOf({beach()}, 1, Timeline::Role::Unused)});
    const Clips clips(facts);
    const auto films = filmsOf(facts, clips, 10);
    ASSERT_EQ(films.size(), 1U);
    EXPECT_EQ(films[0].after, nullptr);
    EXPECT_NE(timelineIn(facts.states.front(), films[0], clips), nullptr);
    EXPECT_EQ(timelineIn(facts.states.back(), films[0], clips), nullptr);
}

TEST(ReportFilms, Names) {
    Timeline named = timelineOf({});
    Timeline nameless = timelineOf({});
    nameless.name.clear();
    EXPECT_EQ((Film{1, &named, &nameless}).name(), "Holiday"); // the older name is better than none
    EXPECT_EQ((Film{1, &nameless, &named}).name(), "Holiday");
    EXPECT_EQ((Film{1, &nameless, nullptr}).name(), "Timeline without a name");
}

// The page

TEST(ReportOfFacts, TheFolderStandsBehindTheName) {
    Facts facts = factsOf(beach(), beach());
    facts.name = "films/summer/film.xml";
    EXPECT_THAT(
        page(facts),
        HasSubstr("<h1><bdi>film.xml</bdi></h1>\n<p class=\"folder\">in <bdi>films/summer/</bdi></p>"));
    facts.name = "films/summer/";
    EXPECT_THAT(page(facts), HasSubstr("<h1><bdi>films/summer/</bdi></h1>\n"));
    EXPECT_THAT(page(facts), Not(HasSubstr("class=\"folder\"")));
}

TEST(ReportOfFacts, AClipThatIsGoneWithoutALossIsListed) {
    Facts facts = factsOf({timelineOf({beach()})}, {timelineOf({})});
    const std::string line =
        "removed</span> clip <strong><bdi>Beach</bdi></strong> (id 2): it is on no timeline any "
        "more, <code>V70_SomeAdaptor</code></li>";
    EXPECT_THAT(page(facts), HasSubstr(line));
    facts.report.losses = {lossOf(PartKind::Clip, 2, 2)}; // which says why
    EXPECT_THAT(page(facts), Not(HasSubstr(line)));
    EXPECT_THAT(
        page(facts),
        HasSubstr("lost</span> clip <strong><bdi>Thing</bdi></strong> (id 2): nobody knows why</li>"));
}

TEST(ReportOfFacts, TheVerdictCountsWhatIsMissing) {
    Facts facts = factsOf(beach(), beach());
    facts.isWhole = false;
    EXPECT_THAT(page(facts), HasSubstr("is missing in the result.</strong> See the errors below.</p>"));
    facts.report.losses = {lossOf(PartKind::Effect, 8, 2), lossOf(PartKind::Effect, 9, 2),
                           lossOf(PartKind::Title, 10, 2), lossOf(PartKind::Title, 11, 2)};
    facts.report.losses[2].isIntended = true;
    facts.report.losses[3].wasUsed = false;
    EXPECT_THAT(page(facts), HasSubstr("</strong> 2 effects lost; 1 title removed; 1 title left out.</p>"));
}

TEST(ReportOfFacts, PartsThatAClipLostAreListedWithIt) {
    Facts facts = factsOf(beach(), beach());
    facts.report.losses = {lossOf(PartKind::Effect, 8, 2), lossOf(PartKind::Title, 9, 2)};
    facts.report.losses[1].wasUsed = false;
    const std::string html = page(facts);
    const std::string table = html.substr(html.find("<table class=\"clips\">"));
    EXPECT_THAT(table,
                HasSubstr("lost</span> effect <strong><bdi>Thing</bdi></strong> (id 8): nobody knows why"));
    EXPECT_THAT(
        table, HasSubstr("left out</span> title <strong><bdi>Thing</bdi></strong> (id 9): nobody knows why"));
}

TEST(ReportOfFacts, MessagesSayWhichClipTheyAreAbout) {
    Facts facts = factsOf(beach(), beach());
    facts.report.log = {lineAbout(beach(), "ERROR"),
                        {step, "WARNING", "about no clip", "a.cpp:1", Reader::LoggedObject{"File", 8}}};
    EXPECT_THAT(page(facts), HasSubstr("<span class=\"where\">clip <strong><bdi>Beach</bdi></strong> at "
                                       "1:05, <code>Effect::Blur</code>, id 9</span>"));
    EXPECT_THAT(page(facts), HasSubstr("<span class=\"where\"><code>File</code>, id 8</span>"));
    facts.report.log[0].object->clip->time.reset();
    EXPECT_THAT(page(facts), HasSubstr("<bdi>Beach</bdi></strong>, <code>Effect::Blur</code>"));
}

TEST(ReportOfFacts, AVersionThatWasGuessedHasItsReasons) {
    Facts facts = factsOf(beach(), beach());
    facts.report.recovery.emplace();
    facts.report.recovery->version = 28;
    facts.report.recovery->versionGuess = {28, 30, {"a Timeline::Clip has labels: version 28 or later"}};
    EXPECT_THAT(
        page(facts),
        HasSubstr(
            "schema version 28</span> <bdi>a Timeline::Clip has labels: version 28 or later</bdi></li>"));
}

TEST(ReportOfFacts, ARepairNamesTheFirstOfItsClips) {
    Facts facts = factsOf(beach(), beach());
    Reader::RepairMade repair;
    repair.name = "some-repair";
    repair.before = "V70_SomeAdaptor";
    repair.text = "things were put right";
    for (unsigned long long id = 1; id <= 21; ++id)
        repair.objects.push_back(
            {"Effect::Blur", 100 + id,
             Reader::Part{PartKind::Clip, id, "Timeline::Clip", "Clip " + std::to_string(id), id}});
    facts.report.repairs = {repair};
    EXPECT_THAT(page(facts), HasSubstr("<bdi>things were put right</bdi>; clips <strong><bdi>Clip "
                                       "1</bdi></strong>, <strong><bdi>Clip 2</bdi>"));
    EXPECT_THAT(page(facts), HasSubstr("<bdi>Clip 20</bdi></strong> and 1 more</li>"));
    facts.report.repairs[0].objects.resize(20);
    EXPECT_THAT(page(facts), HasSubstr("<bdi>Clip 20</bdi></strong></li>"));
}

TEST(ReportOfFacts, RepairsAmongTheStepsAreThoseThatWereMade) {
    Facts facts = factsOf(beach(), beach());
    for (const char* name : {"first-repair", "second-repair"}) {
        Reader::RepairMade repair;
        repair.name = name;
        repair.before = step;
        repair.text = std::string("text of the ") + name;
        facts.report.repairs.push_back(repair);
    }
    // The first was made on the text, before there was a document; of the last nothing is known.
    facts.states.push_back({"second-repair", true, 0, facts.states.back().timelines});
    facts.states.push_back({"third-repair", true, 0, facts.states.back().timelines});
    const std::string html = page(facts);
    const std::string steps = html.substr(html.find("<h2 id=\"steps-title\">"));
    EXPECT_THAT(steps, Not(HasSubstr("text of the first-repair")));
    EXPECT_THAT(steps, HasSubstr("text of the second-repair"));
    EXPECT_THAT(steps, HasSubstr("<p><code>third-repair</code></p>"));
}

TEST(ReportOfFacts, AClipThatShowsATimelineLinksToIt) {
    TimelineClip scene = beach();
    scene.nested = 8;
    const Timeline nested = timelineOf({clipOf(4, "Boat")}, 8, Timeline::Role::Nested);
    const Facts facts = factsOf({timelineOf({scene}), nested}, {timelineOf({scene}), nested});
    EXPECT_THAT(page(facts), HasSubstr("<li>shows <a href=\"#film-1\">Holiday</a></li>"));
}

TEST(ReportOfFacts, ATimelineThatThePageHasNotIsNotNamed) {
    TimelineClip scene = beach();
    scene.nested = 8;
    EXPECT_THAT(page(factsOf(scene, scene)), Not(HasSubstr("<li>shows")));
}

TEST(ReportOfFacts, LongListsAreCounted) {
    Facts facts = factsOf(beach(), beach());
    for (unsigned long long id = 0; id < 501; ++id)
        facts.report.log.push_back({step, "WARNING", "line " + std::to_string(id), "a.cpp:1"});
    EXPECT_THAT(page(facts), HasSubstr("<bdi>line 499</bdi>"));
    EXPECT_THAT(page(facts), Not(HasSubstr("<bdi>line 500</bdi>")));
    EXPECT_THAT(page(facts), HasSubstr("<p class=\"note\">and 1 more</p>"));
}

TEST(ReportOfFacts, FieldsThatAreTooManyAreCounted) {
    Facts facts = factsOf(beach(), beach());
    for (int number = 0; number < 62; ++number)
        facts.effects[0].fields.push_back(
            {Reader::FieldChange::Kind::Added, "Timeline::Clip", "field" + std::to_string(number), 1, {}});
    EXPECT_THAT(page(facts), HasSubstr("<code>Timeline::Clip.field59</code>"));
    EXPECT_THAT(page(facts), Not(HasSubstr("<code>Timeline::Clip.field60</code>")));
    EXPECT_THAT(page(facts), HasSubstr("<p class=\"note\">and 2 fields more</p>"));
}

TEST(ReportOfFacts, MediaFilesThatAreTooManyAreCountedAndMissingOnesComeFirst) {
    Facts facts = factsOf(beach(), beach());
    for (int number = 0; number < 5000; ++number)
        facts.media.push_back({"here" + std::to_string(number), 1, Reader::Presence::Present});
    facts.media.push_back({"gone.mp4", 2, Reader::Presence::Missing});
    const std::string html = page(facts);
    EXPECT_THAT(html, HasSubstr("<bdi>gone.mp4</bdi>"));
    EXPECT_THAT(html, HasSubstr("<bdi>here4998</bdi>"));
    EXPECT_THAT(html, Not(HasSubstr("<bdi>here4999</bdi>")));
    EXPECT_THAT(html, HasSubstr("<p class=\"note\">and 1 more</p>"));
}

TEST(ReportOfFacts, MoreClipsThanAPageCanDraw) {
    std::vector<TimelineClip> many;
    for (unsigned long long id = 2; id < 50003; ++id)
        many.push_back(clipOf(id, "Clip"));
    const auto timelines = std::make_shared<const Timelines>(Timelines{timelineOf(std::move(many))});
    Facts facts = factsOf(beach(), beach());
    for (ReportPage::State& state : facts.states)
        state.timelines = timelines;
    const std::string html = page(facts);
    EXPECT_THAT(html, HasSubstr("The project has more clips than this page can draw: 50,001."));
    EXPECT_THAT(html, HasSubstr("and 1 clip more"));
    EXPECT_THAT(html, Not(HasSubstr("<svg class=\"picture\"")));
    EXPECT_THAT(html, Not(HasSubstr("<h2 id=\"stages-title\">")));
}

TEST(ReportOfFacts, TooManyChangesForAPictureOfEachStep) {
    // Each state moves all clips: 11 states of 30,000 clips are more than 300,000 entries.
    Facts facts;
    facts.name = "film.xml";
    for (int number = 0; number < 11; ++number) {
        std::vector<TimelineClip> clips;
        for (unsigned long long id = 2; id < 30002; ++id) {
            clips.push_back(clipOf(id, "Clip"));
            clips.back().start = static_cast<long long>(id) * 5000 + number;
        }
        facts.effects.push_back({step, "All clips move.", {}, {}, {{"Timeline::Clip", 1}}, {}});
        facts.states.push_back({number == 0 ? "" : step, false, 0,
                                std::make_shared<const Timelines>(Timelines{timelineOf(std::move(clips))})});
    }
    EXPECT_THAT(page(facts), HasSubstr("The project changes too much for pictures of each step."));
    facts.states.resize(9);
    EXPECT_THAT(page(facts), Not(HasSubstr("The project changes too much for pictures of each step.")));
}

} // namespace
