// What an export says of a project, by small documents that are written out here.

#include "Exchange/OpenTimeline.h"

#include "Exchange/Internal/ObjectCopies.h"
#include "Exchange/Internal/Urls.h"
#include "Reader/Flatten.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <set>

using nlohmann::json;
using Json = nlohmann::ordered_json;
using Reader::Omission;
using Reader::TimelineExport;
using testing::ElementsAre;
using testing::IsEmpty;
using Kind = Reader::Omission::Kind;

namespace {

json object(const char* className, int id, json fields) {
    fields["@meta"] = {{"class_name", className}, {"object_id", id}};
    return fields;
}

json link(int id) {
    return {{"@meta_reference", id}};
}

/// A clip of an entry, and its place on a track. Clips have the ids 100, 101, ... and timings 100 more.
struct Entry {
    json clip = json::object();
    json timing = json::object();
};

Entry clip(const char* name, long long start, long long duration, json fields = json::object(),
           json timing = json::object()) {
    Entry entry{std::move(fields), std::move(timing)};
    entry.clip["name"] = name;
    if (!entry.clip.contains("type"))
        entry.clip["type"] = 1;
    entry.timing["timestamp"] = start;
    entry.timing["duration"] = duration;
    if (!entry.timing.contains("track"))
        entry.timing["track"] = link(10);
    return entry;
}

json timeline(int id, int firstClip, const std::vector<Entry>& entries, json fields = json::object()) {
    json list = json::array();
    int number = firstClip;
    for (const Entry& entry : entries) {
        list.push_back({{"clip", object("Timeline::Clip", number, entry.clip)},
                        {"timing", object("Timeline::ClipTiming", number + 100, entry.timing)}});
        ++number;
    }
    fields["clips"] = std::move(list);
    return object("Timeline::Object", id, std::move(fields));
}

Reader::Document document(json content) {
    return Reader::Document(
        Reader::openEnvelope({{"version", "1.0"}, {"schemaVersion", 77}, {"data", std::move(content)}},
                             "film"),
        77);
}

Reader::Document project(json main) {
    return document(object("Project::Content", 1, {{"timeline", std::move(main)}}));
}

/// A project whose timeline has a main track, id 10, and these clips.
Reader::Document film(const std::vector<Entry>& entries, json fields = json::object()) {
    fields["tracks"] = json::array({object("Timeline::Track", 10, {{"type", 1}})});
    return project(timeline(2, 100, entries, std::move(fields)));
}

Json track(const TimelineExport& result, std::size_t number = 0) {
    return result.document["tracks"]["children"][number];
}

Json items(const TimelineExport& result, std::size_t trackNumber = 0) {
    return track(result, trackNumber)["children"];
}

double seconds(const Json& time) {
    return time["value"].get<double>() / time["rate"].get<double>();
}

/// "Gap 2", "Clip Beach 5" and the like, with durations in seconds.
std::vector<std::string> shape(const Json& children) {
    std::vector<std::string> words;
    for (const Json& child : children) {
        const std::string schema = child["OTIO_SCHEMA"];
        std::string word = schema.substr(0, schema.find('.'));
        if (const std::string name = child["name"]; !name.empty())
            word += ' ' + name;
        std::ostringstream times;
        if (word.starts_with("Transition"))
            times << ' ' << seconds(child["in_offset"]) << '+' << seconds(child["out_offset"]);
        else
            times << ' ' << seconds(child["source_range"]["duration"]);
        words.push_back(word + times.str());
    }
    return words;
}

std::vector<std::pair<Kind, unsigned long long>> kinds(const TimelineExport& result) {
    std::vector<std::pair<Kind, unsigned long long>> list;
    for (const Omission& omission : result.omissions)
        list.emplace_back(omission.kind, omission.object);
    return list;
}

Json time(double value, double rate) {
    return {{"OTIO_SCHEMA", "RationalTime.1"}, {"rate", rate}, {"value", value}};
}

Json range(Json start, Json duration) {
    return {
        {"OTIO_SCHEMA", "TimeRange.1"}, {"duration", std::move(duration)}, {"start_time", std::move(start)}};
}

void collectIds(const Json& value, std::multiset<unsigned long long>& ids) {
    if (value.is_object() && value.contains("@meta") && value["@meta"].is_object())
        ids.insert(value["@meta"]["object_id"].get<unsigned long long>());
    if (value.is_structured()) {
        for (const Json& item : value)
            collectIds(item, ids);
    }
}

/// Every object of the project must be in the export exactly once.
void expectAllObjects(const Reader::Document& document, const TimelineExport& result) {
    std::multiset<unsigned long long> expected;
    for (const auto& [id, object] : document.json().flat.objects)
        expected.insert(id);
    std::multiset<unsigned long long> found;
    collectIds(result.document, found);
    EXPECT_EQ(found, expected);
}

// Places

TEST(OpenTimeline, ClipsHaveTheirPlacesByGaps) {
    const auto document = film({clip("Late", 9000, 500), clip("Beach", 2000, 5000)});
    const auto result = exportTimeline(document);
    EXPECT_THAT(shape(items(result)), ElementsAre("Gap 2", "Clip Beach 5", "Gap 2", "Clip Late 0.5"));
    EXPECT_EQ(result.clips, 2U);
    EXPECT_EQ(result.timelines, 1U);
    EXPECT_THAT(result.omissions, IsEmpty());
    expectAllObjects(document, result);
}

TEST(OpenTimeline, ClipsThatOverlapAreOnSeveralTracks) {
    const auto result =
        exportTimeline(film({clip("A", 0, 10000), clip("B", 4000, 2000), clip("C", 6000, 1000)}));
    ASSERT_EQ(result.document["tracks"]["children"].size(), 2U);
    EXPECT_THAT(shape(items(result, 1)), ElementsAre("Clip A 10")); // the first lane is the upper track
    EXPECT_THAT(shape(items(result, 0)), ElementsAre("Gap 4", "Clip B 2", "Clip C 1"));
    EXPECT_EQ(track(result, 0)["metadata"]["adaptors"]["lane"], 1);
}

TEST(OpenTimeline, TheUppermostTrackComesLast) {
    const auto document =
        project(timeline(2, 100,
                         {clip("Song", 0, 1000, {{"type", 3}}, {{"track", link(12)}}),
                          clip("Low", 0, 1000, json::object(), {{"track", link(11)}, {"trackLevel", 0}}),
                          clip("High", 0, 1000, json::object(), {{"track", link(11)}, {"trackLevel", 1}})},
                         {{"tracks",
                           {object("Timeline::Track", 10, {{"type", 16}, {"hidden", true}}),
                            object("Timeline::Track", 11, {{"type", 8}, {"muted", true}}),
                            object("Timeline::Track", 12, {{"type", 4}, {"muted", true}})}}}));
    const auto result = exportTimeline(document);
    ASSERT_EQ(result.document["tracks"]["children"].size(), 4U);
    EXPECT_EQ(track(result, 0)["name"], "audio");
    EXPECT_EQ(track(result, 0)["kind"], "Audio");
    EXPECT_EQ(track(result, 0)["enabled"], false);
    EXPECT_EQ(track(result, 1)["name"], "overlay 1");
    EXPECT_EQ(track(result, 1)["enabled"], true); // its pictures are shown
    EXPECT_EQ(track(result, 2)["name"], "overlay");
    EXPECT_EQ(track(result, 3)["name"], "titles");
    EXPECT_EQ(track(result, 3)["kind"], "Video");
    EXPECT_EQ(track(result, 3)["enabled"], false);
    EXPECT_THAT(kinds(result), ElementsAre(std::pair(Kind::TrackMuted, 11ULL)));
    expectAllObjects(document, result);
}

TEST(OpenTimeline, AHiddenTrackOfSoundIsListed) {
    const auto result = exportTimeline(
        project(timeline(2, 100, {clip("Song", 0, 1000, {{"type", 3}})},
                         {{"tracks", {object("Timeline::Track", 10, {{"type", 4}, {"hidden", true}})}}})));
    EXPECT_EQ(track(result)["enabled"], true); // it is heard
    EXPECT_THAT(kinds(result), ElementsAre(std::pair(Kind::TrackHidden, 10ULL)));
}

// Times

TEST(OpenTimeline, WholeFramesHaveTheFrameRate) {
    const auto result = exportTimeline(
        film({clip("A", 0, 4000, json::object(), {{"sourcePosition", 7}})}, {{"frameRate", 25.0}}));
    EXPECT_EQ(items(result)[0]["source_range"], range(time(7, 1000), time(100, 25)));
    EXPECT_EQ(result.document["global_start_time"], time(0, 25));
}

TEST(OpenTimeline, OtherTimesAreMilliseconds) {
    const auto result = exportTimeline(film({clip("A", 0, 4001)}, {{"frameRate", 29.97}}));
    EXPECT_EQ(items(result)[0]["source_range"], range(time(0, 1000), time(4001, 1000)));
    EXPECT_EQ(result.document["global_start_time"], time(0, 29.97));
    EXPECT_TRUE(exportTimeline(film({})).document["global_start_time"].is_null());
}

TEST(OpenTimeline, RatesThatNoTimelineHasAreNotTaken) {
    for (const double rate : {0.0, -25.0, std::numeric_limits<double>::infinity()}) {
        const auto result = exportTimeline(film({clip("A", 0, 4000)}, {{"frameRate", rate}}));
        EXPECT_TRUE(result.document["global_start_time"].is_null()) << rate;
        EXPECT_EQ(items(result)[0]["source_range"], range(time(0, 1000), time(4000, 1000))) << rate;
    }
    for (const double rate : {0.5, 2000.0}) {
        const auto result = exportTimeline(film({clip("A", 0, 4000)}, {{"frameRate", rate}}));
        EXPECT_EQ(result.document["global_start_time"], time(0, rate));
        EXPECT_EQ(items(result)[0]["source_range"], range(time(0, 1000), time(4000, 1000))) << rate;
    }
}

TEST(OpenTimeline, TimesThatNoNumberSaysAreListed) {
    constexpr long long most = std::numeric_limits<long long>::max();
    const auto document = film(
        {clip("Before", -1, 10), clip("Endless", 5, most), clip("Far", most, 1), clip("Negative", 100, -50),
         clip("Odd", 200, 10, {{"sourceDuration", most}}, {{"sourcePosition", -most}})});
    const auto result = exportTimeline(document);
    EXPECT_THAT(shape(items(result)), ElementsAre("Gap 0.1", "Clip Negative 0", "Gap 0.1", "Clip Odd 0.01"));
    EXPECT_THAT(kinds(result),
                ElementsAre(std::pair(Kind::ClipPlace, 100ULL), std::pair(Kind::ClipPlace, 101ULL),
                            std::pair(Kind::ClipPlace, 102ULL), std::pair(Kind::ClipLength, 103ULL),
                            std::pair(Kind::SourceRange, 104ULL), std::pair(Kind::MediaRange, 104ULL)));
    EXPECT_EQ(result.document["tracks"]["metadata"]["adaptors"]["timeline"]["clips"].size(), 3U);
    expectAllObjects(document, result);
}

// Transitions

json joined(int id, int from, int to, const char* className = "Transition::Blinds") {
    return {{"transition", object(className, id, {{"tag", "Blinds"}})},
            {"clipFrom", from == 0 ? json() : link(from)},
            {"clipTo", to == 0 ? json() : link(to)}};
}

TEST(OpenTimeline, TransitionsAreBetweenTheClipsThatTheyJoin) {
    const auto document =
        film({clip("B", 5000, 5000, json::object(), {{"transitionIn", 300}, {"transitionOut", 500}}),
              clip("A", 0, 5000, json::object(), {{"transitionOut", 200}})},
             {{"transitions", {joined(50, 101, 100), joined(51, 100, 0, "Transition::Crossfade")}}});
    const auto result = exportTimeline(document);
    EXPECT_THAT(shape(items(result)), ElementsAre("Clip A 5", "Transition Blinds 0.2+0.3", "Clip B 5",
                                                  "Transition Blinds 0.5+0", "Gap 0"));
    EXPECT_EQ(items(result)[1]["transition_type"], "Custom_Transition");
    EXPECT_EQ(items(result)[3]["transition_type"], "SMPTE_Dissolve");
    EXPECT_THAT(result.omissions, IsEmpty());
    expectAllObjects(document, result);
}

TEST(OpenTimeline, ATransitionFromNothingBeginsWithAGap) {
    const auto result = exportTimeline(film({clip("A", 0, 5000, json::object(), {{"transitionIn", 200}})},
                                            {{"transitions", {joined(50, 0, 100)}}}));
    EXPECT_THAT(shape(items(result)), ElementsAre("Gap 0", "Transition Blinds 0+0.2", "Clip A 5"));
}

TEST(OpenTimeline, AnOverlappingClipDoesNotComeBetweenJoinedClips) {
    const auto result = exportTimeline(
        film({clip("Other", 5000, 5000), clip("A", 0, 5000, json::object(), {{"transitionOut", 200}}),
              clip("B", 5000, 5000)},
             {{"transitions", {joined(50, 101, 102)}}}));
    EXPECT_THAT(shape(items(result, 1)), ElementsAre("Clip A 5", "Transition Blinds 0.2+0", "Clip B 5"));
    EXPECT_THAT(shape(items(result, 0)), ElementsAre("Gap 5", "Clip Other 5"));
}

TEST(OpenTimeline, OtherTransitionsAreListedAndKept) {
    const auto document =
        film({clip("A", 0, 5000, json::object(), {{"transitionOut", 5001}}), clip("B", 5000, 5000),
              clip("C", 11000, 1000), clip("D", 12000, 100, json::object(), {{"transitionOut", -1}})},
             {{"transitions",
               {joined(50, 100, 101), joined(51, 101, 102), joined(52, 999, 102), joined(53, 0, 0),
                joined(54, 103, 0)}}});
    const auto result = exportTimeline(document);
    EXPECT_THAT(shape(items(result)), ElementsAre("Clip A 5", "Clip B 5", "Gap 1", "Clip C 1", "Clip D 0.1"));
    EXPECT_THAT(kinds(result),
                ElementsAre(std::pair(Kind::TransitionPlace, 51ULL), std::pair(Kind::TransitionPlace, 52ULL),
                            std::pair(Kind::TransitionPlace, 53ULL), std::pair(Kind::TransitionLength, 50ULL),
                            std::pair(Kind::TransitionLength, 54ULL)));
    EXPECT_EQ(result.document["tracks"]["metadata"]["adaptors"]["timeline"]["transitions"].size(), 5U);
    expectAllObjects(document, result);
}

/// The entry of a clip whose timing says how much of it lies in transitions.
Entry clipWithTransitions(const char* name, long long start, long long duration, long long in,
                          long long out) {
    return clip(name, start, duration, json::object(), {{"transitionIn", in}, {"transitionOut", out}});
}

TEST(OpenTimeline, TransitionsOfClipsThatDoNotFollowEachOtherAreListed) {
    const auto document =
        film({clip("A", 0, 5000), clip("Above", 5000, 1000, json::object(), {{"trackLevel", 1}}),
              clip("Empty", 5000, 0), clip("Unplaced", -5, 5)},
             {{"transitions",
               {joined(50, 100, 101), joined(51, 100, 100), joined(52, 100, 102), joined(53, 103, 100),
                joined(54, 100, 999), joined(55, 999, 0)}}});
    const auto result = exportTimeline(document);
    std::vector<unsigned long long> misplaced;
    for (const auto& [kind, id] : kinds(result)) {
        if (kind == Kind::TransitionPlace)
            misplaced.push_back(id);
    }
    EXPECT_THAT(misplaced, ElementsAre(50, 51, 52, 53, 54, 55));
    expectAllObjects(document, result);
}

TEST(OpenTimeline, AnEndOfAClipHasOneTransition) {
    const auto result = exportTimeline(
        film({clip("A", 0, 5000), clip("B", 5000, 5000)},
             {{"transitions", {joined(50, 100, 101), joined(51, 100, 0), joined(52, 0, 101)}}}));
    EXPECT_THAT(shape(items(result)), ElementsAre("Clip A 5", "Transition Blinds 0+0", "Clip B 5"));
    EXPECT_THAT(kinds(result), ElementsAre(std::pair(Kind::TransitionPlace, 51ULL),
                                           std::pair(Kind::TransitionPlace, 52ULL)));
}

TEST(OpenTimeline, TheTransitionsOfAClipAreNoLongerThanTheClip) {
    const auto bothEnds = [](long long in, long long out) {
        return kinds(exportTimeline(film({clip("A", 0, 5000), clipWithTransitions("B", 5000, 5000, in, out)},
                                         {{"transitions", {joined(50, 100, 101), joined(51, 101, 0)}}})));
    };
    EXPECT_THAT(bothEnds(3000, 2000), IsEmpty());
    EXPECT_THAT(bothEnds(3000, 2001), ElementsAre(std::pair(Kind::TransitionLength, 51ULL)));
    EXPECT_THAT(bothEnds(5001, 0), ElementsAre(std::pair(Kind::TransitionLength, 50ULL)));
}

// Clips

TEST(OpenTimeline, SpeedAndReversalAreTimeWarps) {
    const auto result = exportTimeline(film(
        {clip("Fast", 0, 1000, {{"sourceDuration", 8000}}, {{"sourceDuration", 4000}}),
         clip("Back", 1000, 1000, {{"sourceDuration", 4000}}, {{"sourceDuration", 4000}, {"reversed", true}}),
         clip("Still", 2000, 1000, {{"sourceDuration", 4000}, {"type", 2}}, {{"sourceDuration", 1000}}),
         clip("Third", 3000, 1000, {{"sourceDuration", 1000}}, {{"sourceDuration", 3000}})}));
    const Json children = items(result);
    EXPECT_EQ(children[0]["effects"][0]["OTIO_SCHEMA"], "LinearTimeWarp.1");
    EXPECT_EQ(children[0]["effects"][0]["time_scalar"], 2.0);
    EXPECT_EQ(children[1]["effects"][0]["time_scalar"], -1.0);
    EXPECT_THAT(children[2]["effects"], IsEmpty());
    EXPECT_EQ(children[3]["effects"][0]["time_scalar"], 0.333333333333333); // as many digits as readers keep
}

TEST(OpenTimeline, VolumeFadesAndEffectsAreEffects) {
    const auto document =
        film({clip("A", 0, 1000,
                   {{"volume", 50},
                    {"effects",
                     {object("Effect::Blur", 60,
                             {{"Effect::Object",
                               object("Effect::Object", 61, {{"tag", "Soft"}, {"bypass", true}})}})}}},
                   {{"fadeInDuration", 40}, {"fadeOutDuration", 80}}),
              clip("B", 1000, 1000, {{"effects", {link(60)}}})});
    const auto result = exportTimeline(document);
    const Json effects = items(result)[0]["effects"];
    ASSERT_EQ(effects.size(), 4U);
    EXPECT_EQ(effects[0]["effect_name"], "volume");
    EXPECT_EQ(effects[0]["metadata"]["adaptors"]["percent"], 50);
    EXPECT_EQ(effects[1]["metadata"]["adaptors"]["milliseconds"], 40);
    EXPECT_EQ(effects[2]["metadata"]["adaptors"]["milliseconds"], 80);
    EXPECT_EQ(effects[3]["name"], "Soft");
    EXPECT_EQ(effects[3]["effect_name"], "Effect::Blur");
    EXPECT_EQ(effects[3]["enabled"], false);
    const Json shared = items(result)[1]["effects"][0];
    EXPECT_EQ(shared["name"], "Soft");
    EXPECT_EQ(shared["metadata"]["adaptors"]["effect"], (Json{{"@meta_reference", 60}}));
    expectAllObjects(document, result);
}

TEST(OpenTimeline, LabelsAreMarkers) {
    const auto result =
        exportTimeline(film({clip("A", 0, 1000, {{"labels", {"intro", "good"}}}, {{"sourcePosition", 300}}),
                             clip("B", 1000, 1000, {{"labels", {7}}})}));
    const Json markers = items(result)[0]["markers"];
    ASSERT_EQ(markers.size(), 2U);
    EXPECT_EQ(markers[0]["name"], "intro");
    EXPECT_EQ(markers[1]["name"], "good");
    EXPECT_EQ(markers[0]["marked_range"], range(time(300, 1000), time(1000, 1000)));
    EXPECT_THAT(kinds(result), ElementsAre(std::pair(Kind::Label, 101ULL)));
}

TEST(OpenTimeline, MediaAreReferences) {
    const auto document = film(
        {clip("A", 0, 10, {{"file", object("File", 70, {{"path", "/films/a b.mp4"}, {"duration", 12000}})}}),
         clip("B", 10, 10, {{"file", link(70)}}),
         clip("C", 20, 10, {{"file", object("File", 71, {{"path", "#PACKAGES_ROOT#/c.mp4"}})}}),
         clip("D", 30, 10, {{"enabled", false}})});
    const auto result = exportTimeline(document);
    const auto media = [&](std::size_t n) { return items(result)[n]["media_references"]["DEFAULT_MEDIA"]; };
    EXPECT_EQ(media(0)["OTIO_SCHEMA"], "ExternalReference.1");
    EXPECT_EQ(media(0)["target_url"], "file:///films/a%20b.mp4");
    EXPECT_EQ(media(0)["name"], "a b.mp4");
    EXPECT_EQ(media(0)["available_range"], range(time(0, 1000), time(12000, 1000)));
    EXPECT_EQ(media(1)["target_url"], "file:///films/a%20b.mp4");
    EXPECT_EQ(media(2)["OTIO_SCHEMA"], "MissingReference.1");
    EXPECT_EQ(media(2)["metadata"]["adaptors"]["file"]["path"], "#PACKAGES_ROOT#/c.mp4");
    EXPECT_EQ(media(3)["OTIO_SCHEMA"], "MissingReference.1");
    EXPECT_EQ(items(result)[3]["enabled"], false);
    EXPECT_THAT(kinds(result), ElementsAre(std::pair(Kind::MediaFolder, 102ULL)));
    expectAllObjects(document, result);
}

TEST(OpenTimeline, TitlesAreGenerated) {
    const json overlay =
        object("Overlay::Preset", 80,
               {{"items", {object("Overlay::Item", 81, {{"type", 1}, {"encodedText", "U2Vh"}})}}});
    const auto result = exportTimeline(film({clip("T", 0, 10, {{"type", 4}, {"overlay", overlay}})}));
    const Json title = items(result)[0];
    const Json media = title["media_references"]["DEFAULT_MEDIA"];
    EXPECT_EQ(media["OTIO_SCHEMA"], "GeneratorReference.1");
    EXPECT_EQ(media["generator_kind"], "title");
    EXPECT_EQ(media["parameters"]["text"], "Sea");
    EXPECT_EQ(title["metadata"]["adaptors"]["texts"], Json::array({"Sea"}));
    EXPECT_EQ(title["metadata"]["adaptors"]["clip"]["overlay"]["items"][0]["encodedText"], "U2Vh");
}

TEST(OpenTimeline, WhatOnlyTheEditorKnowsIsListed) {
    const auto document =
        film({clip("A", 0, 10, {{"moveEnvelope", object("TransformationEnvelope", 90, {{"x", 1}})}})},
             {{"links", {{{"slave", link(100)}, {"link", object("Timeline::Link", 91, {{"offset", 5}})}}}}});
    const auto result = exportTimeline(document);
    EXPECT_THAT(kinds(result),
                ElementsAre(std::pair(Kind::ClipFeature, 100ULL), std::pair(Kind::Link, 100ULL)));
    EXPECT_EQ(items(result)[0]["metadata"]["adaptors"]["clip"]["moveEnvelope"]["x"], 1);
    expectAllObjects(document, result);
}

// Nested timelines

json nested(int timelineId) {
    return {{"type", 64}, {"nestedTimeline", link(timelineId)}};
}

json withTrack(int id) {
    return {{"tracks", {object("Timeline::Track", id, {{"type", 1}})}}};
}

json onTrack(int id) {
    return {{"track", link(id)}};
}

TEST(OpenTimeline, NestedTimelinesAreStacks) {
    const json village =
        timeline(3, 300, {clip("Church", 1000, 1000, json::object(), onTrack(30))}, withTrack(30));
    const auto document = film({clip("Village", 2000, 5000, {{"type", 64}, {"nestedTimeline", village}},
                                     {{"sourcePosition", 500}})});
    const auto result = exportTimeline(document);
    EXPECT_THAT(shape(items(result)), ElementsAre("Gap 2", "Stack Village 5"));
    const Json stack = items(result)[1];
    EXPECT_EQ(stack["source_range"], range(time(500, 1000), time(5000, 1000)));
    EXPECT_THAT(shape(stack["children"][0]["children"]), ElementsAre("Gap 1", "Clip Church 1"));
    EXPECT_EQ(result.timelines, 2U);
    EXPECT_EQ(result.clips, 2U);
    expectAllObjects(document, result);
}

TEST(OpenTimeline, TimelinesInCirclesEnd) {
    const auto document = film({clip("Self", 0, 10, nested(2)), clip("Gone", 10, 10, nested(999))});
    const auto result = exportTimeline(document);
    EXPECT_THAT(shape(items(result)), ElementsAre("Clip Self 0.01", "Clip Gone 0.01"));
    EXPECT_THAT(kinds(result),
                ElementsAre(std::pair(Kind::NestedCircle, 100ULL), std::pair(Kind::NestedMissing, 101ULL)));
    expectAllObjects(document, result);
}

/// Timelines that each show the next one so often.
Reader::Document chain(int length, int times) {
    Serialize::Json::FlatObject flat;
    json content = object("Project::Content", 1, {{"timeline", link(1000)}});
    Reader::JsonDocument result;
    result.root = 1;
    result.flat.objects[1] = std::move(content);
    for (int n = 0; n < length; ++n) {
        const int id = 1000 + n * 100;
        json entries = json::array();
        for (int time = 0; time < times; ++time) {
            const int clip = id + 1 + time * 2;
            json fields = {{"name", "Down"}, {"type", 64}, {"nestedTimeline", link(id + 100)}};
            result.flat.objects[std::uint64_t(clip)] = object("Timeline::Clip", clip, std::move(fields));
            result.flat.objects[std::uint64_t(clip) + 1] =
                object("Timeline::ClipTiming", clip + 1,
                       {{"timestamp", time * 10}, {"duration", 10}, {"track", link(id + 50)}});
            entries.push_back({{"clip", link(clip)}, {"timing", link(clip + 1)}});
        }
        result.flat.objects[std::uint64_t(id) + 50] = object("Timeline::Track", id + 50, {{"type", 1}});
        result.flat.objects[std::uint64_t(id)] =
            object("Timeline::Object", id,
                   {{"clips", std::move(entries)}, {"tracks", json::array({link(id + 50)})}});
    }
    return Reader::Document(std::move(result), 77);
}

TEST(OpenTimeline, DeepTimelinesEnd) {
    const auto document = chain(3000, 1);
    const auto result = exportTimeline(document);
    EXPECT_EQ(result.timelines, 17U);
    ASSERT_FALSE(result.omissions.empty());
    EXPECT_EQ(result.omissions[0].kind, Kind::NestedDepth);
    expectAllObjects(document, result);
}

TEST(OpenTimeline, TimelinesThatDoubleAreBounded) {
    const auto document = chain(12, 2);
    const auto result = exportTimeline(document);
    EXPECT_LT(result.clips, 1000U); // all would be 8190
    EXPECT_GT(result.clips, 500U);
    std::set<Kind> found;
    for (const Omission& omission : result.omissions)
        found.insert(omission.kind);
    EXPECT_EQ(found, (std::set<Kind>{Kind::NestedSize, Kind::NestedMissing}));
    expectAllObjects(document, result);
}

TEST(OpenTimeline, UnusedTimelinesAreKept) {
    const json village = timeline(3, 300, {clip("Church", 0, 10)});
    const auto document =
        ::document(object("Project::Content", 1, {{"timeline", timeline(2, 100, {})}, {"other", village}}));
    const auto result = exportTimeline(document);
    EXPECT_THAT(kinds(result), ElementsAre(std::pair(Kind::UnusedTimeline, 3ULL)));
    expectAllObjects(document, result);
}

// Texts, numbers and depth

TEST(OpenTimeline, AProjectWithoutTimelineIsEmpty) {
    const auto result = exportTimeline(document(object("Project::Content", 1, json::object())));
    EXPECT_EQ(result.document["OTIO_SCHEMA"], "Timeline.1");
    EXPECT_THAT(result.document["tracks"]["children"], IsEmpty());
}

TEST(OpenTimeline, MetadataHoldWhatReadersKeep) {
    json deep = 1;
    for (int level = 0; level < 1000; ++level)
        deep = json::array({deep});
    const auto result = exportTimeline(film({clip("A\xff", 0, 10,
                                                  {{"half", 0.5},
                                                   {"long", 0.1 + 0.2},
                                                   {"nan", std::numeric_limits<double>::quiet_NaN()},
                                                   {"infinite", -std::numeric_limits<double>::infinity()},
                                                   {"wide", std::numeric_limits<std::uint64_t>::max()},
                                                   {"OTIO_SCHEMA", "Clip.2"},
                                                   {"_OTIO_SCHEMA", 1},
                                                   {"zero", std::string("a\0b", 3)},
                                                   {"deep", deep}})}));
    const Json fields = items(result)[0]["metadata"]["adaptors"]["clip"];
    EXPECT_EQ(items(result)[0]["name"], "A\xef\xbf\xbd");
    EXPECT_EQ(fields["half"], 0.5);
    EXPECT_EQ(fields["long"], "0.30000000000000004");
    EXPECT_EQ(fields["nan"], "NaN");
    EXPECT_EQ(fields["infinite"], "-Infinity");
    EXPECT_EQ(fields["wide"], "18446744073709551615");
    EXPECT_EQ(fields["_OTIO_SCHEMA"], "Clip.2");
    EXPECT_EQ(fields["__OTIO_SCHEMA"], 1);
    EXPECT_EQ(fields["zero"], "a\xef\xbf\xbd"
                              "b");
    EXPECT_THAT(kinds(result), ElementsAre(std::pair(Kind::Text, 0ULL)));
    const std::string text = Reader::openTimelineText(result.document);
    EXPECT_EQ(json::parse(text), json(result.document));
    int deepest = 0;
    int level = 0;
    for (const char c : text) {
        level += c == '{' || c == '[' ? 1 : c == '}' || c == ']' ? -1 : 0;
        deepest = std::max(deepest, level);
    }
    EXPECT_GT(deepest, 1000); // within the text of a value
    EXPECT_NE(text.find("\"[[["), std::string::npos);
}

TEST(OpenTimeline, WideNumbersOfAFileAreTexts) {
    const Reader::Document document = Reader::parse(
        R"({"version":"1.0","schemaVersion":77,"data":{"@meta":{"class_name":"Project::Content","object_id":1},
        "wide":123456789012345678901234567890}})",
        QStringLiteral("film"));
    EXPECT_EQ(exportTimeline(document).document["metadata"]["adaptors"]["project"]["wide"],
              "123456789012345678901234567890");
}

TEST(OpenTimeline, KeysThatBecomeEqualAreToldApart) {
    const std::string replaced = "a\xef\xbf\xbd";
    const auto result = exportTimeline(film({clip("A", 0, 10, {{std::string("a\0", 2), 1}, {replaced, 2}})}));
    const Json fields = items(result)[0]["metadata"]["adaptors"]["clip"];
    EXPECT_EQ(fields[replaced], 1);
    EXPECT_EQ(fields[replaced + '_'], 2);
}

TEST(OpenTimeline, ObjectsInTheTextOfADeepValueAreKept) {
    json deep = object("Note", 95, {{"text", "kept"}});
    for (int level = 0; level < 100; ++level)
        deep = json::array({deep});
    const auto document = film({clip("A", 0, 10, {{"deep", deep}})});
    const auto result = exportTimeline(document);
    const Json objects = result.document["metadata"]["adaptors"]["objects"];
    ASSERT_EQ(objects.size(), 1U);
    EXPECT_EQ(objects[0]["text"], "kept");
    expectAllObjects(document, result);
}

TEST(OpenTimeline, AnEndlessNumberIsAText) {
    const auto result =
        exportTimeline(film({clip("A", 0, 10, {{"infinite", std::numeric_limits<double>::infinity()}})}));
    EXPECT_EQ(items(result)[0]["metadata"]["adaptors"]["clip"]["infinite"], "Infinity");
}

TEST(OpenTimeline, EachNumberThatIsWrittenHasFewDigits) {
    using Reader::Exchange::isReadExactly;
    using Reader::Exchange::roundedForReaders;
    EXPECT_TRUE(isReadExactly(0));
    EXPECT_TRUE(isReadExactly(29.97));
    EXPECT_TRUE(isReadExactly(-1e14));
    EXPECT_TRUE(isReadExactly(1e-20));
    EXPECT_FALSE(isReadExactly(1e-23));
    EXPECT_FALSE(isReadExactly(1e22));
    EXPECT_FALSE(isReadExactly(8.0 / 7));
    EXPECT_EQ(roundedForReaders(8.0 / 7), 1.14285714285714);
    EXPECT_EQ(roundedForReaders(0.5), 0.5);
}

TEST(OpenTimeline, PathsAreUrls) {
    using Reader::Exchange::urlOf;
    EXPECT_EQ(urlOf("/films/100%/a b#1?.mp4"), "file:///films/100%25/a%20b%231%3F.mp4");
    EXPECT_EQ(urlOf("media/\xc3\xa9t\xc3\xa9.mp4"), "media/%C3%A9t%C3%A9.mp4");
    EXPECT_EQ(urlOf("../a.mp4"), "../a.mp4");
    EXPECT_EQ(urlOf("a:b.mp4"), "./a:b.mp4");
    EXPECT_EQ(urlOf("C:\\films\\a b.mp4"), "file:///C:/films/a%20b.mp4");
    EXPECT_EQ(urlOf("\\\\server\\films\\a.mp4"), "file://server/films/a.mp4");
    EXPECT_EQ(urlOf("media://beach.mp4"), "media://beach.mp4");
    EXPECT_EQ(urlOf("a\xff"), "a%FF");
    EXPECT_EQ(urlOf("Ab+c-d.e1://beach.mp4"), "Ab+c-d.e1://beach.mp4");
    EXPECT_EQ(urlOf("1ab://beach.mp4"), "./1ab://beach.mp4"); // the scheme of a URL begins with a letter
    EXPECT_EQ(urlOf("a_b://beach.mp4"), "./a_b://beach.mp4"); // and has no such character
    EXPECT_EQ(urlOf("z:/films/a.mp4"), "file:///z:/films/a.mp4");
    EXPECT_EQ(urlOf("C:a.mp4"), "./C:a.mp4");
    EXPECT_EQ(urlOf("1:/a.mp4"), "./1:/a.mp4");
    EXPECT_EQ(urlOf("C:"), "./C:");
    EXPECT_EQ(urlOf(""), "");
}

TEST(OpenTimeline, ArchivesAreRefused) {
    QDomDocument xml;
    xml.setContent(QByteArray("<Archive/>"));
    EXPECT_THROW(exportTimeline(Reader::Document(xml)), std::invalid_argument);
}

} // namespace
