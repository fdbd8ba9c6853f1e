// Conversion of arrays: lists, tuples, pairs and maps.

#include "support/Conversion.h"

#include <gtest/gtest.h>

using nlohmann::json;
using Tests::archive;
using Tests::convert;
using Tests::dataOf;
using Tests::expectSame;
using Tests::item;
using Tests::object;
using Tests::predeclarator;
using Tests::ref;
using Tests::transitionEntry;
using Tests::valueOf;

namespace {

TEST(XmlToJson, Arrays) {
    const std::string one = item("<Data type='int32_t' value='1'/>");
    expectSame(json::array(), valueOf("type='Array' size='0'"));
    expectSame(json::array({1, 1}), valueOf("type='Array' size='4294967295'", one + one)); // size is a hint
    expectSame(json::array({1}),
               valueOf("type='Array'", "<Other><Data type='int32_t' value='2'/></Other>" + one));
}

TEST(XmlToJson, NullEntriesAreLeftOut) {
    const std::string text = item("<Data type='String' value='a'/>");
    expectSame(json::array({"a", "a"}), valueOf("type='Array' size='3'", text + item(ref("Data", 0)) + text));
    expectSame(json::array(), valueOf("type='Array' size='2'", item(ref("Data", 0)) + item("")));
    expectSame(json::array(), valueOf("type='Array' size='1'", item("<Data type='Point' value='1'/>")));
}

TEST(XmlToJson, ANullDataIsFollowedByTheOtherFormsOfAnEntry) {
    const std::string pair = "<First type='int32_t' value='1'/><Second type='int32_t' value='2'/>";
    expectSame(json::array({{{"first", 1}, {"second", 2}}}),
               valueOf("type='Array'", item(ref("Data", 0) + pair)));
    const std::string entry = "<Key type='int32_t' value='3'/><Value type='int32_t' value='4'/>";
    expectSame(json::array({{{"first", 3}, {"second", 4}}}), valueOf("type='Array'", item(pair + entry)));
    // A null of any origin is left out; the id of the reference stays visited.
    const json data = dataOf("<f type='Array'>" + item(ref("Data", 3) + pair) + "</f>" + ref("g", 3),
                             "<RootObject type='Point' objectId='3' value='1'/>");
    expectSame(json::array({{{"first", 1}, {"second", 2}}}), data["f"]);
    expectSame({{"@meta_reference", 3}}, data["g"]);
}

TEST(XmlToJson, ValuesOfDifferentTypesBecomeATuple) {
    const std::string text = item("<Data type='String' value='a'/>");
    const std::string number = item("<Data type='int32_t' value='1'/>");
    const std::string natural = item("<Data type='uint32_t' value='1'/>");
    const std::string real = item("<Data type='double' binaryData='P+AAAAAAAAA='/>");
    expectSame({{"element_0", "a"}, {"element_1", 1}}, valueOf("type='Array' size='2'", text + number));
    expectSame({{"element_0", 1}, {"element_1", 1}}, valueOf("type='Array' size='2'", number + natural));
    expectSame({{"element_0", 1}, {"element_1", 0.5}}, valueOf("type='Array' size='2'", number + real));
    std::string twelve = text;
    for (int i = 0; i < 11; ++i)
        twelve += number;
    expectSame(1, valueOf("type='Array' size='12'", twelve)["element_11"]);
}

TEST(XmlToJson, PairsNeedBothParts) {
    const std::string first = "<First type='String' value='a'/>";
    expectSame(json::array(), valueOf("type='Array'", item(first)));
    expectSame(json::array(), valueOf("type='Array'", item("<Second type='String' value='a'/>")));
    expectSame(json::array(), valueOf("type='Array'", item("<Key type='String' value='a'/>")));
    expectSame(json::array({{{"first", "a"}, {"second", nullptr}}}),
               valueOf("type='Array'", item(first + ref("Second", 0))));
}

TEST(XmlToJson, MapsOfClipsHaveReadableNames) {
    const auto entryWith = [](const std::string& value, const std::string& types = "Timeline::Clip") {
        return convert(archive(ref("RootRef", 2) +
                               predeclarator({{"A", 2}, {types, 3}, {"Timeline::Link", 4}}) +
                               object("A", 2, "<f type='Array'>" + item(ref("Key", 3) + value) + "</f>") +
                               object("Timeline::Clip", 3) + object("Timeline::Link", 4)))["data"]["f"][0];
    };
    const json clip = {{"@meta", {{"class_name", "Timeline::Clip"}, {"object_id", 3}}}};
    expectSame(
        {{"clip", clip}, {"timing", {{"@meta", {{"class_name", "Timeline::ClipTiming"}, {"object_id", 8}}}}}},
        entryWith("<Value type='Timeline::ClipTiming' objectId='8'/>"));
    expectSame({{"slave", clip}, {"link", {{"@meta", {{"class_name", "Timeline::Link"}, {"object_id", 4}}}}}},
               entryWith(ref("Value", 4)));
    expectSame({{"clip", clip},
                {"tracking", {{"@meta", {{"class_name", "Timeline::TrackingLinkInfo"}, {"object_id", 8}}}}}},
               entryWith("<Value type='Timeline::TrackingLinkInfo' objectId='8'/>"));
    expectSame({{"first", clip}, {"second", 5}}, entryWith("<Value type='int32_t' value='5'/>"));
    expectSame({{"first", clip}, {"second", nullptr}}, entryWith(ref("Value", 0)));
    // The class is read from the predeclarations only.
    expectSame({{"first", clip},
                {"second", {{"@meta", {{"class_name", "Timeline::ClipTiming"}, {"object_id", 8}}}}}},
               entryWith("<Value type='Timeline::ClipTiming' objectId='8'/>", "Effect::Blur"));
}

TEST(XmlToJson, TransitionsAreBetweenTwoClips) {
    const json from = {{"@meta", {{"class_name", "Timeline::Clip"}, {"object_id", 4}}}};
    const json to = {{"@meta", {{"class_name", "Timeline::Clip"}, {"object_id", 5}}}};
    // The clips are converted before the transition: the clip that it refers to is written in full in the
    // pair.
    const json fade = {{"@meta", {{"class_name", "Transition::Fade"}, {"object_id", 3}}},
                       {"clip", {{"@meta_reference", 4}}}};
    expectSame({{"clipFrom", from}, {"clipTo", to}, {"transition", fade}}, transitionEntry(ref("Second", 5)));
    expectSame({{"clipFrom", from}, {"clipTo", nullptr}, {"transition", fade}},
               transitionEntry(ref("Second", 0)));
}

TEST(XmlToJson, OtherTransitionEntriesHaveFirstAndSecond) {
    const json fade = {{"@meta", {{"class_name", "Transition::Fade"}, {"object_id", 3}}},
                       {"clip", {{"@meta", {{"class_name", "Timeline::Clip"}, {"object_id", 4}}}}}};
    const json to = {{"@meta", {{"class_name", "Timeline::Clip"}, {"object_id", 5}}}};
    const json general = {{"first", fade},
                          {"second", json::array({{{"first", {{"@meta_reference", 4}}}, {"second", to}}})}};
    expectSame(general, transitionEntry(ref("Second", 5), "2"));
    expectSame(general, transitionEntry(ref("Second", 5), "one"));
    // One of the clips is not predeclared: its class is not known.
    expectSame(general, transitionEntry(ref("Second", 5), "1",
                                        {{"A", 2}, {"Transition::Fade", 3}, {"Timeline::Clip", 4}}));
    // Sizes compare as numbers.
    EXPECT_TRUE(transitionEntry(ref("Second", 5), "01").contains("clipTo"));
    // A missing second part is no clip pair, and no pair at all.
    expectSame({{"first", fade}, {"second", json::array()}}, transitionEntry(""));
}

TEST(XmlToJson, KeyAndFirstComeBeforeValueAndSecond) {
    const json full = {{"@meta", {{"class_name", "B"}, {"object_id", 3}}}};
    const json link = {{"@meta_reference", 3}};
    // In any order in the file.
    expectSame(
        json::array({{{"first", full}, {"second", link}}}),
        dataOf("<f type='Array'>" + item(ref("Value", 3) + ref("Key", 3)) + "</f>", object("B", 3))["f"]);
    expectSame(
        json::array({{{"first", full}, {"second", link}}}),
        dataOf("<f type='Array'>" + item(ref("Second", 3) + ref("First", 3)) + "</f>", object("B", 3))["f"]);
}

TEST(XmlToJson, EntriesOfEachKindAreAlikeOrATuple) {
    const std::string list = item("<Data type='Array'>" + item("<Data type='bool' value='1'/>") + "</Data>");
    const std::string none = item("<Data type='Array' size='0'/>");
    const std::string embedded = item("<Data type='B' objectId='5'/>");
    const std::string link =
        item(ref("Data", 2)); // to the object that is being converted: a link, which is an object, too
    const std::string yes = item("<Data type='bool' value='1'/>");
    expectSame(json::array({json::array({true}), json::array()}), valueOf("type='Array'", list + none));
    const json b = {{"@meta", {{"class_name", "B"}, {"object_id", 5}}}};
    expectSame(json::array({b, {{"@meta_reference", 2}}}), valueOf("type='Array'", embedded + link));
    expectSame({{"element_0", b}, {"element_1", true}}, valueOf("type='Array'", embedded + yes));
    expectSame({{"element_0", json::array()}, {"element_1", true}}, valueOf("type='Array'", none + yes));
    // A null entry has no position.
    expectSame({{"element_0", true}, {"element_1", "a"}},
               valueOf("type='Array'", yes + item(ref("Data", 0)) + item("<Data type='String' value='a'/>")));
    // A tuple inside an array counts as an object.
    const std::string tuple = item("<Data type='Array'>" + yes + none + "</Data>");
    expectSame(json::array({{{"element_0", true}, {"element_1", json::array()}}, b}),
               valueOf("type='Array'", tuple + embedded));
}

TEST(XmlToJson, OnlyTheFirstDataOfAnEntryCounts) {
    expectSame(json::array({1}),
               valueOf("type='Array'", item("<Data type='int32_t' value='1'/><Data type='int32_t' value='2'/>"
                                            "<Key type='bool'/><Value type='bool'/>")));
    expectSame(json::array(),
               valueOf("type='Array'", item(ref("Data", 0) + "<Data type='int32_t' value='2'/>")));
}

TEST(XmlToJson, ClipPairsWhoseClipsAreMissingOrEmbedded) {
    const auto entry = [](const std::string& key, const std::string& value) {
        return dataOf("<f type='Array'>" + item(key + value) + "</f>")["f"][0];
    };
    const std::string fade = "<Key type='Transition::Fade' objectId='30'/>";
    const auto pair = [](const std::string& content) {
        return "<Value type='Array' size='1'>" + item(content) + "</Value>";
    };
    expectSame({{"clipFrom", nullptr},
                {"clipTo", nullptr},
                {"transition", {{"@meta", {{"class_name", "Transition::Fade"}, {"object_id", 30}}}}}},
               entry(fade, pair(ref("First", 0) + ref("Second", 0))));
    const std::string embedded = "<First type='Timeline::Clip' objectId='31'/>";
    EXPECT_EQ(entry(fade, pair(ref("Second", 0) + embedded))["clipFrom"]["@meta"]["object_id"], 31);
    // Further items of the pair's array are ignored if its size is 1.
    EXPECT_EQ(entry(fade, "<Value type='Array' size='1'>" + item(ref("First", 0) + ref("Second", 0)) +
                              item(embedded + ref("Second", 0)) + "</Value>")
                  .size(),
              3U);
    // Each of these is converted like any other entry.
    const std::string nulls = ref("First", 0) + ref("Second", 0);
    for (const std::string& value : {std::string("<Value type='Array' size='1'/>"),
                                     "<Value type='List' size='1'>" + item(nulls) + "</Value>",
                                     "<Value type='Array'>" + item(nulls) + "</Value>",
                                     "<Value type='Array' size='-1'>" + item(nulls) + "</Value>",
                                     pair("<First type='Timeline::ClipTiming'/>" + ref("Second", 0)),
                                     pair("<First type='Null'/><Second type='Timeline::Clips'/>"),
                                     pair(ref("First", 9) + ref("Second", 0))}) {
        const json general = entry(fade, value);
        EXPECT_TRUE(general.contains("first") && general.contains("second")) << value;
    }
    // Only the prefix is compared, case-sensitively.
    EXPECT_TRUE(entry("<Key type='Transition::'/>", pair(nulls)).contains("transition"));
    for (const char* key :
         {"<Key type='Transition'/>", "<Key type='transition::Fade'/>", "<Key type='X::Transition::Fade'/>",
          "<Key type='ObjectRef' value='0'/>", "<Key type='ObjectRef' value='77'/>"})
        EXPECT_TRUE(entry(key, pair(nulls)).contains("second")) << key;
}

TEST(XmlToJson, ClipsOfANamedMapAreEmbeddedOrReferredTo) {
    const auto entry = [](const std::string& content) {
        return dataOf("<f type='Array'>" + item(content) + "</f>")["f"][0];
    };
    const std::string clip = "<Key type='Timeline::Clip' objectId='5'/>";
    EXPECT_TRUE(entry(clip + "<Value type='Timeline::ClipTiming'/>").contains("timing"));
    EXPECT_TRUE(entry("<Value type='Timeline::Link'/>" + clip).contains("slave"));
    EXPECT_TRUE(entry(clip + "<Value type='Timeline::TrackingLinkInfo'/>").contains("tracking"));
    for (const char* type : {"Timeline::clipTiming", "Timeline::ClipTimings", "Null", ""})
        EXPECT_TRUE(entry(clip + "<Value type='" + type + "'/>").contains("second")) << type;
    EXPECT_TRUE(
        entry("<Key type='Timeline::Track'/><Value type='Timeline::ClipTiming'/>").contains("second"));
}

} // namespace
