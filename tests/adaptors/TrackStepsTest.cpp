// What the steps of version 77 on tracks need of each other.

#include "Reader/AdaptorTable.h"
#include "Serialize/Json/FlatObject.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

using nlohmann::json;
using Serialize::Json::FlatObject;

namespace {

FlatObject flat(const char* text) {
    FlatObject document;
    const json objects = json::parse(text);
    for (const auto& [id, object] : objects.items())
        document.objects.emplace(std::stoull(id), object);
    return document;
}

std::vector<const Reader::AdaptorRow*> stepsOfVersion77() {
    std::vector<const Reader::AdaptorRow*> steps;
    for (const Reader::AdaptorRow& step : Reader::adaptorTable()) {
        if (step.number == 77)
            steps.push_back(&step);
    }
    return steps;
}

TEST(TrackSteps, OrderWithinVersion77) {
    std::vector<std::string> names;
    for (const Reader::AdaptorRow* step : stepsOfVersion77())
        names.emplace_back(step->className);
    const std::vector<std::string> expected = {"V77_TrackUsedAdaptor", "V77_TitlesTrackAdaptor",
                                               "V77_TrackLevelAdaptor"};
    EXPECT_EQ(names, expected);
}

// A new titles track has no `used`, and a track whose clips all move to clones is still listed: both hold in this
// order of the steps only.
TEST(TrackSteps, VersionAsAWhole) {
    FlatObject document = flat(R"({
        "1": {"@meta": {"class_name": "Timeline::Object", "object_id": 1},
              "clips": [{"clip": {"@meta_reference": 10}, "timing": {"@meta_reference": 20}},
                        {"clip": {"@meta_reference": 11}, "timing": {"@meta_reference": 21}}],
              "tracks": [{"@meta_reference": 2}, {"@meta_reference": 3}, {"@meta_reference": 4}]},
        "2": {"@meta": {"class_name": "Timeline::Track", "object_id": 2}, "type": 1, "used": true,
              "hidden": false, "timeline": {"@meta_reference": 1}},
        "3": {"@meta": {"class_name": "Timeline::Track", "object_id": 3}, "type": 2, "used": false,
              "timeline": {"@meta_reference": 1}},
        "4": {"@meta": {"class_name": "Timeline::Track", "object_id": 4}, "type": 8, "used": false,
              "timeline": {"@meta_reference": 1}},
        "10": {"@meta": {"class_name": "Timeline::Clip", "object_id": 10}, "type": 4},
        "11": {"@meta": {"class_name": "Timeline::Clip", "object_id": 11}, "type": 1},
        "20": {"@meta": {"class_name": "Timeline::ClipTiming", "object_id": 20},
               "track": {"@meta_reference": 2}, "trackLevel": 0},
        "21": {"@meta": {"class_name": "Timeline::ClipTiming", "object_id": 21},
               "track": {"@meta_reference": 3}, "trackLevel": 1}
    })");
    for (const Reader::AdaptorRow* step : stepsOfVersion77())
        step->makeJson()->adapt(document);

    const json clone = {{"@meta", {{"class_name", "Timeline::Track"}, {"object_id", 23}}},
                        {"type", 2},
                        {"used", false},
                        {"timeline", {{"@meta_reference", 1}}}};
    const json expected = {
        {{"@meta_reference", 2}}, {{"@meta_reference", 3}}, clone, {{"@meta_reference", 22}}};
    EXPECT_EQ(document.objects.at(1)["tracks"], expected);
    EXPECT_EQ(document.objects.at(20)["track"], json({{"@meta_reference", 22}}));
    EXPECT_EQ(document.objects.at(21)["track"], json({{"@meta_reference", 23}}));
    EXPECT_FALSE(document.objects.at(20).contains("trackLevel"));
    EXPECT_FALSE(document.objects.at(22).contains("used"));
    EXPECT_EQ(document.objects.at(23), clone);
}

/// Two hundred thousand lists, each within the one before.
json deepValue() {
    json value;
    for (int level = 0; level < 200000; ++level) {
        json list = json::array();
        list.push_back(std::move(value));
        value = std::move(list);
    }
    return value;
}

TEST(TrackSteps, DepthCostsNoStack) {
    FlatObject document = flat(R"({
        "1": {"@meta": {"class_name": "Timeline::Object", "object_id": 1},
              "clips": [{"clip": {"@meta_reference": 10}, "timing": {"@meta_reference": 20}}],
              "tracks": [{"@meta_reference": 2}]},
        "2": {"@meta": {"class_name": "Timeline::Track", "object_id": 2}, "type": 16, "used": true,
              "timeline": {"@meta_reference": 1}},
        "10": {"@meta": {"class_name": "Timeline::Clip", "object_id": 10}, "type": 4},
        "20": {"@meta": {"class_name": "Timeline::ClipTiming", "object_id": 20},
               "track": {"@meta_reference": 2}, "trackLevel": 1}
    })");
    document.objects.at(2)["deep"] = deepValue();
    for (const Reader::AdaptorRow* step : stepsOfVersion77())
        step->makeJson()->adapt(document);

    const json& tracks = document.objects.at(1)["tracks"];
    ASSERT_EQ(tracks.size(), 2U);
    EXPECT_EQ(tracks[1]["@meta"]["object_id"], 21);
    std::size_t depth = 0;
    for (const json* value = &tracks[1]["deep"]; value->is_array(); value = &value->front())
        ++depth;
    EXPECT_EQ(depth, 200000U);
}

} // namespace
