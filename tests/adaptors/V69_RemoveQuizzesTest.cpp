// The step to version 69, where case files are not enough: the text of the filler clip, deeply nested
// timelines, and many clips.

#include "Adaptors/Project/V69_RemoveQuizzesAdaptor.h"
#include "Serialize/Json/FlatObject.h"

#include <gtest/gtest.h>

#include <QByteArray>

using nlohmann::json;
using Serialize::Json::FlatObject;

namespace {

json entryOf(FlatObject& document, int clipType, int start, int duration, const json& nested = nullptr) {
    json* clip = document.createObject("Timeline::Clip");
    (*clip)["type"] = clipType;
    (*clip)["nestedTimeline"] = nested;
    json* timing = document.createObject("Timeline::ClipTiming");
    (*timing)["timestamp"] = start;
    (*timing)["duration"] = duration;
    json entry = json::object();
    entry["clip"] = document.createRef(clip);
    entry["timing"] = document.createRef(timing);
    return entry;
}

TEST(V69RemoveQuizzes, FillerShowsTheWordQuiz) {
    FlatObject document;
    json* timeline = document.createObject("Timeline::Object");
    (*timeline)["clips"].push_back(entryOf(document, 32, 0, 100));
    Project::V69_RemoveQuizzesAdaptor().adapt(document);

    const json* item = document.firstObjectByClassName("Overlay::Item");
    ASSERT_TRUE(item);
    const QByteArray encoded = QByteArray::fromStdString(item->at("encodedText").get<std::string>());
    EXPECT_EQ(encoded.size(), 816);
    const QByteArray text = QByteArray::fromBase64(encoded);
    EXPECT_EQ(text.size(), 612);
    EXPECT_TRUE(text.contains("background-color:transparent;\">Quiz</span></p></body></html><!--"));
}

TEST(V69RemoveQuizzes, TimelinesMayBeNestedDeeply) {
    constexpr int depth = 30'000;
    FlatObject document;
    json* timeline = document.createObject("Timeline::Object");
    json* innermost = timeline;
    for (int level = 1; level < depth; ++level) {
        json* inner = document.createObject("Timeline::Object");
        (*innermost)["clips"].push_back(entryOf(document, 1, 0, 10, document.createRef(inner)));
        innermost = inner;
    }
    (*innermost)["clips"].push_back(entryOf(document, 32, 0, 10));
    const auto before = document.objects.size();
    Project::V69_RemoveQuizzesAdaptor().adapt(document);

    EXPECT_EQ(document.objects.size(), before + 8); // the filler of the innermost timeline
    const auto filler = Serialize::Json::getAnyObjectId((*innermost)["clips"].at(0)["clip"]);
    EXPECT_EQ(document.objects.at(filler.value()).at("name"), "SimpleText");
}

TEST(V69RemoveQuizzes, EverySecondOfManyClipsIsRemoved) {
    constexpr int pairs = 10'000;
    FlatObject document;
    json clips = json::array();
    json links = json::array();
    for (int i = 0; i < pairs; ++i) {
        for (const int type : {1, 32}) {
            const json entry = entryOf(document, type, i, 1);
            json link = json::object();
            link["slave"] = entry["clip"];
            links.push_back(link);
            clips.push_back(entry);
        }
    }
    json* timeline = document.createObject("Timeline::Object");
    (*timeline)["clips"] = clips;
    (*timeline)["links"] = links;
    Project::V69_RemoveQuizzesAdaptor().adapt(document);

    ASSERT_EQ((*timeline)["clips"].size(), std::size_t(pairs));
    ASSERT_EQ((*timeline)["links"].size(), std::size_t(pairs));
    for (std::size_t i = 0; i < std::size_t(pairs); ++i) {
        ASSERT_EQ((*timeline)["clips"][i], clips[2 * i]);
        ASSERT_EQ((*timeline)["links"][i], links[2 * i]);
    }
}

} // namespace
