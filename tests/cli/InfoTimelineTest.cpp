// What `adaptors info` shows of timelines and media, and the picture of a timeline.

#include "Phrases.h"
#include "TimelineDrawing.h"
#include "TimelineLanes.h"
#include "TimelineReport.h"
#include "support/ProgramTest.h"
#include "support/PseudoTerminal.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <climits>

using nlohmann::json;
using Reader::Timeline;
using Reader::TimelineClip;
using Tests::archive;
using Tests::Outcome;
using Tests::ProgramTest;
using Tests::runInTerminal;
using Tests::sample;

namespace {

/// The part of the output that --timeline adds.
QByteArray pictureOf(const QByteArray& out) {
    return out.mid(out.indexOf("\n\n\"") + 1);
}

TimelineClip clip(unsigned long long id, const char* name, long long start, long long duration,
                  std::size_t track = 0) {
    TimelineClip made;
    made.id = id;
    made.name = name;
    made.start = start;
    made.duration = duration;
    made.track = track;
    return made;
}

/// The lanes without the ruler, each without its label.
std::vector<std::string> lanes(const Timeline& timeline, int width = 51, bool isUtf8 = false) {
    std::vector<std::string> lines;
    const std::string picture = TimelineDrawing::draw(timeline, {width, isUtf8});
    std::size_t number = 0;
    for (std::size_t at = 0; at < picture.size();) {
        const std::size_t end = picture.find('\n', at);
        const std::string line = picture.substr(at, end - at);
        if (number++ >= 2)
            lines.push_back(line.size() > 10 ? line.substr(10) : "");
        at = end + 1;
    }
    return lines;
}

using Lines = std::vector<std::string>;

Timeline withTracks(std::vector<TimelineClip> clips) {
    Timeline timeline;
    timeline.tracks = {{0, Reader::TrackKind::Overlay}, {0, Reader::TrackKind::Main}};
    timeline.clips = std::move(clips);
    return timeline;
}

TEST(Drawing, BarsHaveTheLengthOfTheirClips) {
    // 40 columns for 40 seconds
    EXPECT_EQ(lanes(withTracks({clip(1, "Beach", 0, 10000, 1), clip(2, "Pier", 10000, 30000, 1),
                                clip(3, "Rain", 20000, 4000)})),
              (Lines{"                    [Ra]", "[Beach---][Pier------------------------]"}));
}

TEST(Drawing, NamesStandWhereTheyFit) {
    EXPECT_EQ(lanes(withTracks({clip(1, "Beach", 0, 1000, 1), clip(2, "Beach", 1000, 2000, 1),
                                clip(3, "Beach", 3000, 3000, 1), clip(4, "Beach", 6000, 4000, 1),
                                clip(5, "A long name of a clip", 10000, 30000, 1)})),
              (Lines{"", "|[][-][Be][A long name of a clip-------]"}));
}

TEST(Drawing, ClipsThatOverlapHaveLanesOfTheirOwn) {
    EXPECT_EQ(lanes(withTracks({clip(1, "a", 0, 20000, 1), clip(2, "b", 10000, 30000, 1)})),
              (Lines{"", "[a-----------------]", "          [b---------------------------]"}));
    // A transition lets them overlap.
    Timeline timeline = withTracks({clip(1, "a", 0, 20000, 1), clip(2, "b", 16000, 24000, 1)});
    timeline.transitions.push_back({9, "Transition::Fade", "Fade", 1, 2, 4000});
    EXPECT_EQ(lanes(timeline), (Lines{"", "[a--------------xb---------------------]"}));
}

TEST(Drawing, LevelsHaveLanesOfTheirOwn) {
    Timeline timeline = withTracks({clip(1, "a", 0, 40000, 1), clip(2, "b", 0, 40000, 1)});
    timeline.clips[1].level = 3;
    const std::string picture = TimelineDrawing::draw(timeline, {51, false});
    EXPECT_NE(picture.find("main      [a"), std::string::npos) << picture;
    EXPECT_NE(picture.find("main 3    [b"), std::string::npos) << picture;
}

TEST(Drawing, ManyClipsInOneColumnAreOneSign) {
    Timeline timeline = withTracks({clip(1, "long", 0, 40000)});
    for (int number = 0; number < 1000; ++number)
        timeline.clips.push_back(clip(10 + static_cast<unsigned long long>(number), "x", number, 1, 1));
    EXPECT_EQ(lanes(timeline), (Lines{"[long----------------------------------]", "#"}));
}

TEST(Drawing, EffectsAreMarked) {
    Timeline timeline = withTracks({clip(1, "Beach", 0, 40000)});
    timeline.clips[0].effects.push_back({5, "Effect::Blur", "Blur"});
    EXPECT_EQ(lanes(timeline)[0], "[Beach*--------------------------------]");
}

TEST(Drawing, TheRulerHasTimes) {
    const auto rulerOf = [](long long duration) {
        const std::string picture =
            TimelineDrawing::draw(withTracks({clip(1, "a", 0, duration)}), {51, false});
        return picture.substr(0, picture.find('\n'));
    };
    EXPECT_EQ(rulerOf(40000), "          0:00           0:15           0:30");
    EXPECT_EQ(rulerOf(7200000), "          0:00                1:00:00");
    EXPECT_EQ(rulerOf(400).substr(0, 30), "          0:00.00             ");
}

TEST(Drawing, WideAndHostileNames) {
    const auto lane = [](const char* name, bool isUtf8) {
        return lanes(withTracks({clip(1, name, 0, 40000)}), 51, isUtf8)[0];
    };
    // Without UTF-8 there are ASCII characters only.
    EXPECT_EQ(lane("Gr\xc3\xb6\xc3\x9f"
                   "e",
                   false),
              "[Gr??e---------------------------------]");
    EXPECT_EQ(lane("a\x1b[31m\nb", false), "[a\\x1b[31m\\nb--------------------------]");
    EXPECT_EQ(lane("\xe2\x80\xae", false), "[\\u202e--------------------------------]");
    EXPECT_EQ(lane("\xff", false), "[\\xff----------------------------------]");
    const std::string huge(1 << 20, 'x');
    EXPECT_EQ(lane(huge.c_str(), false), "[" + std::string(38, 'x') + "]");
}

TEST(Drawing, HostileTimesEndSomewhere) {
    for (const long long time : {LLONG_MIN, LLONG_MIN + 1, -1LL, 0LL, 1LL, LLONG_MAX}) {
        for (const long long duration : {LLONG_MIN, -1LL, 0LL, 1LL, LLONG_MAX}) {
            const Timeline timeline = withTracks({clip(1, "a", time, duration), clip(2, "b", 0, 1000)});
            EXPECT_GE(lanes(timeline).size(), 2u) << time << ' ' << duration;
        }
    }
    EXPECT_EQ(lanes(withTracks({})), (Lines{"", ""}));
}

TEST(Drawing, ManyLanesAreCutOff) {
    Timeline timeline = withTracks({});
    for (int level = 0; level < 1000; ++level) {
        timeline.clips.push_back(clip(static_cast<unsigned long long>(level) + 1, "a", 0, 1));
        timeline.clips.back().level = level;
    }
    const Lines lines = lanes(timeline);
    EXPECT_LE(lines.size(), 50u);
    EXPECT_NE(TimelineDrawing::draw(timeline, {51, false}).find("lines more"), std::string::npos);
}

TEST(Lanes, OfOneLevelThereAreNoMoreThan32) {
    Timeline timeline = withTracks({});
    for (unsigned long long id = 1; id <= 40; ++id)
        timeline.clips.push_back(clip(id, "a", 0, 1000));
    const auto lanes = TimelineLanes::lanesOf(timeline);
    ASSERT_EQ(lanes.size(), 33U); // and the one of the other track
    EXPECT_EQ(lanes[30].clips.size(), 1U);
    EXPECT_EQ(lanes[31].clips.size(), 9U); // all others
    EXPECT_EQ(lanes[32].label, "main");
}

/// What the report says of a timeline in its first line.
std::string headingOf(const Timeline& timeline) {
    const std::string text = TimelineReport::text({{timeline}, {}}, std::nullopt);
    const std::string start = "  timelines: 1\n        ";
    EXPECT_TRUE(text.starts_with(start)) << text;
    return text.substr(start.size(), text.find('\n', start.size()) - start.size());
}

TEST(TimelineReport, TimelinesWithoutNameAndSize) {
    Timeline timeline = withTracks({clip(1, "", 0, 1000)});
    timeline.role = Timeline::Role::Main;
    const std::string facts = ", main: 0:00:01.000, 2 tracks, 1 clip, 0 transitions";
    EXPECT_EQ(headingOf(timeline), "timeline without a name" + facts);
    timeline.frameRate = 25;
    timeline.width = 1920; // says nothing without a height
    EXPECT_EQ(headingOf(timeline), "timeline without a name" + facts + ", 25 frames per second");
    timeline.name = "Holiday";
    timeline.height = 1080;
    timeline.frameRate.reset();
    EXPECT_EQ(headingOf(timeline), "\"Holiday\"" + facts + ", 1920 x 1080");
}

TEST(TimelineReport, TracksThatAreMutedOrHidden) {
    Timeline timeline = withTracks({clip(1, "a", 0, 1000)});
    timeline.tracks[0].isMuted = timeline.tracks[1].isMuted = timeline.tracks[1].isHidden = true;
    timeline.clips[0].kind = Reader::ClipKind::Video;
    EXPECT_NE(TimelineReport::text({{timeline}, {}}, std::nullopt)
                  .find("          overlay   1 video, muted\n          main      no clips, muted, hidden\n"),
              std::string::npos);
}

TEST(TimelineReport, MoreFilesThanAreShown) {
    Timeline timeline = withTracks({});
    for (unsigned long long id = 10; id <= 61; ++id) {
        timeline.clips.push_back(clip(id, "a", 0, 1000));
        timeline.clips.back().media = "media/" + std::to_string(id) + ".mp4";
    }
    const std::string text = TimelineReport::text({{timeline}, {}}, std::nullopt);
    EXPECT_NE(text.find("  media:   52 files\n"), std::string::npos) << text;
    EXPECT_NE(text.find("          unknown  media/59.mp4\n          and 2 files more; --json lists all\n"),
              std::string::npos)
        << text;
}

TEST(Words, WhatHasNoName) {
    EXPECT_EQ(Phrases::effectText("", ""), "(no class)");
    EXPECT_EQ(Phrases::effectText("Blur", "Soft"), "Blur \"Soft\"");
    EXPECT_EQ(Phrases::clipText("", 1500), "a clip without a name at 0:00:01.500");
    EXPECT_EQ(Phrases::valueText(json::parse(R"({"class":"A::B","name":5})")), "A::B");
    EXPECT_EQ(Phrases::valueText(json::parse(R"({"class":5,"x":[]})")), "{class: 5, x: []}");
}

TEST(Words, LongTextsAreCutOff) {
    EXPECT_EQ(Phrases::shortText("Beach", 5), "Beach");
    EXPECT_EQ(Phrases::shortText("Beaches", 5), "Beach...");
    EXPECT_EQ(Phrases::shortText("\xc3\xb6\xc3\xb6\xc3\xb6", 2), "\xc3\xb6\xc3\xb6...");
    EXPECT_EQ(Phrases::shortText("a\nb\x1b", 10), "a\\nb\\x1b");
    EXPECT_EQ(Phrases::timeText(LLONG_MIN), "-2562047788015:12:55.808");
    EXPECT_EQ(Phrases::timeText(3723004), "1:02:03.004");
    EXPECT_EQ(Phrases::valueText(json::parse(R"([{"class":"A::B","id":3,"name":"x"},null,1.5,"t"])")),
              "[A::B \"x\", none, 1.5, \"t\"]");
    EXPECT_LT(Phrases::valueText(json(std::string(1 << 20, 'x'))).size(), 100u);
    EXPECT_LT(Phrases::valueText(json(std::vector<int>(10000))).size(), 250u);
    EXPECT_EQ(Phrases::effectText("Effect::Blur", "Blur"), "Blur");
    EXPECT_EQ(Phrases::effectText("Effect::PopArt", "PopArt9Tiles"), "PopArt \"PopArt9Tiles\"");
}

TEST_F(ProgramTest, InfoShowsLengthTracksAndMedia) {
    write("film.xml", sample("holiday-v62.xml"));
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("media"));
    write("media/beach.mp4", "x");
    const QByteArray out = run({"info", "film.xml"}).out;
    EXPECT_TRUE(out.contains("  timelines: 1\n        \"Holiday\", main: 0:00:28.000, 6 tracks, 6 clips, 1 "
                             "transition, 1920 x 1080, 25 frames per second\n"))
        << out.toStdString();
    EXPECT_TRUE(out.contains("          titles    1 title\n")) << out.toStdString();
    EXPECT_TRUE(out.contains("  media:   4 files, 3 missing\n")) << out.toStdString();
    EXPECT_TRUE(out.contains("          present  media/beach.mp4\n")) << out.toStdString();
    EXPECT_TRUE(out.contains("          missing  media/song.ogg\n")) << out.toStdString();
    // Standard input has no folder.
    EXPECT_TRUE(run({"info", "-"}, sample("holiday-v62.xml")).out.contains("unknown  media/beach.mp4"));

    const json machine = json::parse(run({"info", "film.xml", "--json"}).out.toStdString());
    EXPECT_EQ(machine["media"][0],
              json::parse(R"({"path": "media/beach.mp4", "present": true, "clips": 1})"));
    EXPECT_EQ(machine["media"][1]["present"], false);
    const json timeline = machine["timelines"][0];
    EXPECT_EQ(timeline["duration"], 28000);
    EXPECT_EQ(timeline["frameRate"], 25.0);
    EXPECT_EQ(timeline["clips"][1]["name"], "Beach");
    EXPECT_EQ(timeline["clips"][1]["start"], 4000);
    EXPECT_EQ(timeline["clips"][1]["effects"][0]["class"], "Effect::Blur");
    EXPECT_EQ(timeline["clips"][1]["media"], "media/beach.mp4");
    EXPECT_EQ(timeline["clips"][0]["texts"], json({"Summer by the sea"}));
    EXPECT_EQ(timeline["tracks"][timeline["clips"][5]["track"].get<std::size_t>()]["kind"], "audio");
    EXPECT_EQ(timeline["transitions"][0]["from"], timeline["clips"][1]["id"]);
}

TEST_F(ProgramTest, InfoDrawsTheTimelineAsWideAsTheTerminal) {
    write("film.xml", sample("holiday-v62.xml"));
    EXPECT_FALSE(run({"info", "film.xml"}).out.contains("[Beach"));
    for (const int columns : {60, 80, 133}) {
        for (const char* locale : {"C.UTF-8", "C"}) {
            const auto screen = runInTerminal({"info", "film.xml", "--timeline"}, m_folder.path(),
                                              {columns, {{"LC_ALL", locale}}});
            EXPECT_EQ(screen.exitCode, 0);
            const bool isUtf8 = QByteArray(locale) == "C.UTF-8";
            const QString picture = QString::fromUtf8(pictureOf(screen.text));
            EXPECT_TRUE(picture.contains(isUtf8 ? QString::fromUtf8("├Beach") : "[Beach"))
                << picture.toStdString();
            int longest = 0;
            for (const QString& line : picture.split('\n').mid(1)) {
                longest = std::max(longest, line.size());
                if (!isUtf8) {
                    EXPECT_TRUE(
                        std::all_of(line.begin(), line.end(), [](QChar c) { return c < QChar(0x7f); }));
                }
            }
            EXPECT_LT(longest, columns);
            EXPECT_GT(longest, columns - 4);
        }
    }
}

TEST_F(ProgramTest, InfoKnowsHowWideCharactersAre) {
    // The length of the line with the clip of that name: bars have one character in each column.
    const auto lengthWith = [&](const char* name) {
        write("film.xml", archive().replace("Beach", name));
        const Outcome outcome =
            runAfter("export LC_ALL=C.UTF-8 COLUMNS=61; ", {"info", "film.xml", "--timeline"});
        for (const QString& line : QString::fromUtf8(outcome.out).split('\n')) {
            if (line.contains(QString::fromUtf8("├") + QString::fromUtf8(name)))
                return line.size();
        }
        return -1;
    };
    const int length = lengthWith("Beach");
    EXPECT_EQ(length, 60);
    EXPECT_EQ(lengthWith("海岸"), length - 2);       // two columns each
    EXPECT_EQ(lengthWith("Cafe\u0301"), length + 1); // an accent of its own has no column
}

TEST_F(ProgramTest, InfoDrawsNoEndlessLines) {
    write("film.xml", sample("holiday-v62.xml"));
    const Outcome outcome =
        runAfter("export LC_ALL=C COLUMNS=99999999; ", {"info", "film.xml", "--timeline"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    int longest = 0;
    for (const QByteArray& line : outcome.out.split('\n'))
        longest = std::max(longest, line.size());
    EXPECT_LT(longest, 1000);
    EXPECT_GT(longest, 900);
}

TEST_F(ProgramTest, InfoShowsHostileNamesAsEscapes) {
    const QByteArray hostile = "\xe2\x80\xae&#10;&lt;b&gt;" + QByteArray("x").repeated(1 << 20);
    QByteArray film = archive();
    film.replace("value='Beach'", "value='" + hostile + "'");
    film.replace("<tracks ", "<name type='String' value='" + hostile + "'/><tracks ");
    write("film.xml", film);
    const Outcome outcome = run({"info", "film.xml", "--timeline"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_TRUE(outcome.out.contains("\\u202e\\n<b>")) << outcome.out.toStdString();
    EXPECT_FALSE(outcome.out.contains("\xe2\x80\xae"));
    EXPECT_LT(outcome.out.size(), 20000);
}

} // namespace
