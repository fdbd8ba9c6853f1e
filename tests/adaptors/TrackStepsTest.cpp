// The steps of version 77 on tracks: their order, and a track that no case file can contain.

#include "Reader/AdaptorTable.h"
#include "support/Documents.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

using nlohmann::json;
using Serialize::Json::FlatObject;

namespace {

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

/// 200,000 nested lists.
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
    FlatObject document = Tests::flatDocument(R"({
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
