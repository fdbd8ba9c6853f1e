// Objects as `explain` and `diff` compare them: one shape for archives and JSON.

#include "Reader/ObjectGraph.h"

#include "Archive/Xml.h"

#include <gtest/gtest.h>

#include <string>

using nlohmann::json;
using Reader::ObjectGraph;

namespace {

Reader::Document documentOf(const std::string& text) {
    return Reader::parse(QByteArray::fromStdString(text), QStringLiteral("film"));
}

/// An archive whose root object has these fields; clips, a timing and a transition are beside it.
std::string archiveWith(const std::string& fields) {
    return R"(<Archive schemaVersion="62"><RootRef type="ObjectRef" value="2"/>
        <RootObject type="Project" objectId="2">)" +
           fields + R"(</RootObject>
        <RootObject type="Timeline::Clip" objectId="3"><name type="String" value="Beach"/></RootObject>
        <RootObject type="Timeline::Clip" objectId="4"/>
        <RootObject type="Transition::Fade" objectId="5"/></Archive>)";
}

json fieldsOf(const std::string& fields) {
    const ObjectGraph graph = Reader::readObjects(documentOf(archiveWith(fields)));
    EXPECT_EQ(graph.root, 2U);
    const Reader::GraphObject* root = graph.find(2);
    return root ? root->fields : json("no root object");
}

json link(unsigned long long id) {
    return {{"@meta_reference", id}};
}

std::string item(const std::string& content) {
    return "<Item type='Item' index='1'>" + content + "</Item>";
}

std::string list(const std::string& items) {
    return "<list type='Array' size='1'>" + items + "</list>";
}

TEST(ObjectsOfAnArchive, HaveValuesOfTheirKinds) {
    const std::string half = Archive::serializeValue(0.5).toStdString();
    EXPECT_EQ(fieldsOf("<a type='bool' value='1'/><b type='bool' value='0'/><c type='int32_t' value='-7'/>"
                       "<d type='uint64_t' value='18446744073709551615'/><e type='double' value='9' "
                       "binaryData='" +
                       half + "'/><f type='String' value='text'/><g type='StringPtr' value='old'/>"),
              json({{"a", true},
                    {"b", false},
                    {"c", -7},
                    {"d", 18446744073709551615ULL},
                    {"e", 0.5},
                    {"f", "text"},
                    {"g", "old"}}));
    EXPECT_EQ(fieldsOf("<a type='Point' value='3;-4'/><b type='PointF' value='1.5;2.25'/><c type='Point' "
                       "value='3'/><d type='PointF' value='1;2;3'/>"),
              json({{"a", {{"x", 3}, {"y", -4}}},
                    {"b", {{"x", 1.5}, {"y", 2.25}}},
                    {"c", nullptr},
                    {"d", nullptr}}));
    EXPECT_EQ(
        fieldsOf("<a type='ObjectRef' value='3'/><b type='ObjectRef' value='0'/><c type='ImageRef' "
                 "ref='picture.png'/><d type='BlobRef' ref='data'/>"),
        json({{"a", link(3)}, {"b", nullptr}, {"c", {{"ref", "picture.png"}}}, {"d", {{"ref", "data"}}}}));
}

TEST(ObjectsOfAnArchive, HaveTheFieldsOfTheirBaseParts) {
    const json fields =
        fieldsOf("<name type='String' value='first'/><name type='String' value='later'/>"
                 "<BaseOfObject type='Base'><name type='String' value='of the base'/><size type='int32_t' "
                 "value='5'/><BaseOfObject type='Object'><size type='int32_t' value='6'/></BaseOfObject>"
                 "</BaseOfObject>");
    EXPECT_EQ(fields,
              json({{"name", "later"}, {"Base.name", "of the base"}, {"size", 5}, {"Object.size", 6}}));
}

TEST(ObjectsOfAnArchive, HaveLists) {
    EXPECT_EQ(fieldsOf(list("")), json({{"list", json::array()}}));
    EXPECT_EQ(
        fieldsOf(list(item("<Data type='int32_t' value='1'/>") + item("<Data type='int32_t' value='2'/>"))),
        json({{"list", {1, 2}}}));
    // A reference to nothing, and an entry without content, are left out.
    EXPECT_EQ(fieldsOf(list(item("<Data type='ObjectRef' value='0'/>") + item("") +
                            item("<Data type='ObjectRef' value='3'/>"))),
              json({{"list", json::array({link(3)})}}));
    // What is alike in JSON is a list, other things are members.
    EXPECT_EQ(
        fieldsOf(list(item("<Data type='Point' value='1;2'/>") + item("<Data type='ObjectRef' value='3'/>"))),
        json({{"list", json::array({json({{"x", 1}, {"y", 2}}), link(3)})}}));
    EXPECT_EQ(
        fieldsOf(list(item("<Data type='int32_t' value='1'/>") + item("<Data type='String' value='two'/>"))),
        json({{"list", {{"element_0", 1}, {"element_1", "two"}}}}));
}

TEST(ObjectsOfAnArchive, HaveMaps) {
    EXPECT_EQ(fieldsOf(list(item("<First type='int32_t' value='1'/><Second type='String' value='two'/>"))),
              json({{"list", json::array({{{"first", 1}, {"second", "two"}}})}}));
    EXPECT_EQ(fieldsOf(list(item("<Key type='String' value='a'/><Value type='ObjectRef' value='3'/>"))),
              json({{"list", json::array({json({{"first", "a"}, {"second", link(3)}})})}}));
    EXPECT_EQ(
        fieldsOf(list(item("<Key type='ObjectRef' value='3'/><Value type='Timeline::Link' objectId='9'/>"))),
        json({{"list", json::array({json({{"slave", link(3)}, {"link", link(9)}})})}}));
    EXPECT_EQ(
        fieldsOf(list(item("<Key type='ObjectRef' value='5'/><Value type='Array' size='1'>" +
                           item("<First type='ObjectRef' value='3'/><Second type='ObjectRef' value='4'/>") +
                           "</Value>"))),
        json({{"list",
               json::array({json({{"clipFrom", link(3)}, {"clipTo", link(4)}, {"transition", link(5)}})})}}));
}

TEST(ObjectsOfAnArchive, AreFoundInOthers) {
    const ObjectGraph graph = Reader::readObjects(
        documentOf(archiveWith("<a type='Types::Range' objectId='7'><begin type='int64_t' value='1'/></a>"
                               "<b type='Types::Range'><begin type='int64_t' value='2'/></b>"
                               "<c type='Types::Range' objectId='3'><begin type='int64_t' value='3'/></c>")));
    const Reader::GraphObject* root = graph.find(2);
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->fields["a"], link(7));
    // Those without an id of their own have ids that no document uses.
    for (const auto& [field, begin] : {std::pair("a", 1), std::pair("b", 2), std::pair("c", 3)}) {
        const Reader::GraphObject* range = graph.target(*root, field);
        ASSERT_NE(range, nullptr) << field;
        EXPECT_EQ(range->className, "Types::Range");
        EXPECT_EQ(range->fields, json({{"begin", begin}}));
    }
    EXPECT_EQ(graph.find(3)->className, "Timeline::Clip");
    EXPECT_EQ(graph.target(*root, "missing"), nullptr);
    EXPECT_EQ(graph.find(1000), nullptr);
}

TEST(ObjectsOfJson, HaveTheFieldsOfTheirBaseParts) {
    const ObjectGraph graph = Reader::readObjects(documentOf(
        R"({"version":"1.0","schemaVersion":70,"note":"kept","data":{"@meta":{"class_name":"Project","object_id":1},"name":"film",
        "Base::Part":{"@meta":{"class_name":"Base::Part","object_id":2},"name":"part","size":5},
        "clip":{"@meta":{"class_name":"Timeline::Clip","object_id":3},"name":"Beach"}}})"));
    EXPECT_EQ(graph.root, 1U);
    EXPECT_EQ(graph.find(2), nullptr);
    ASSERT_NE(graph.find(1), nullptr);
    EXPECT_EQ(graph.find(1)->fields,
              json({{"name", "film"}, {"Base::Part.name", "part"}, {"size", 5}, {"clip", link(3)}}));
    EXPECT_EQ(graph.envelope.value("note", ""), "kept");
}

TEST(ObjectsOfJson, WhoseBasePartsHoldEachOtherAreRead) {
    const ObjectGraph graph = Reader::readObjects(documentOf(
        R"({"version":"1.0","schemaVersion":70,"data":{"@meta":{"class_name":"Project","object_id":1},
        "Base::Part":{"@meta":{"class_name":"Base::Part","object_id":2},"size":5,
        "Other::Part":{"@meta":{"class_name":"Other::Part","object_id":3},"color":6,
        "Base::Part":{"@meta_reference":2}}}}})"));
    ASSERT_NE(graph.find(1), nullptr);
    EXPECT_EQ(graph.find(1)->fields, json({{"size", 5}, {"color", 6}}));
}

TEST(ObjectsOfJson, HaveLinksThatAreNoBaseParts) {
    // A base part has the name of its class, and its class has one with a "::".
    const ObjectGraph graph = Reader::readObjects(documentOf(
        R"({"version":"1.0","schemaVersion":70,"data":{"@meta":{"class_name":"Project","object_id":1},
        "Note":{"@meta":{"class_name":"Note","object_id":2},"size":5},
        "Base::Part":{"@meta":{"class_name":"Base::Other","object_id":3},"size":6},
        "Lost::Part":{"@meta_reference":90}}})"));
    ASSERT_NE(graph.find(1), nullptr);
    EXPECT_EQ(graph.find(1)->fields,
              json({{"Note", link(2)}, {"Base::Part", link(3)}, {"Lost::Part", link(90)}}));
}

TEST(ObjectsOfClips, AreThoseBelowTheClipAndItsTiming) {
    const ObjectGraph graph = Reader::readObjects(documentOf(
        R"({"version":"1.0","schemaVersion":70,"data":{"@meta":{"class_name":"Timeline::Object","object_id":1},
        "clips":[{"clip":{"@meta":{"class_name":"Timeline::Clip","object_id":2},
                 "file":{"@meta":{"class_name":"File","object_id":3}},
                 "collectionItemInfo":{"@meta":{"class_name":"Timeline::CollectionItemInfo","object_id":4}},
                 "timeline":{"@meta_reference":1},"lost":{"@meta_reference":90}},
         "timing":{"@meta":{"class_name":"Timeline::ClipTiming","object_id":5},
                   "track":{"@meta":{"class_name":"Timeline::Track","object_id":6}}}},
        {"clip":{"@meta":{"class_name":"Timeline::Clip","object_id":7}}},
        {"timing":{"@meta":{"class_name":"Timeline::ClipTiming","object_id":8}}},
        5]}})"));
    const std::unordered_map<unsigned long long, unsigned long long> expected = {
        {2, 2}, {3, 2}, {4, 2}, {5, 2}, {7, 7}};
    EXPECT_EQ(Reader::clipsOfObjects(graph), expected);
}

TEST(ObjectsOfClips, AreNoneInATimelineWithoutAList) {
    for (const char* fields : {"", R"(,"clips":null)", R"(,"clips":[])"}) {
        const ObjectGraph graph = Reader::readObjects(documentOf(
            R"({"version":"1.0","schemaVersion":70,"data":{"@meta":{"class_name":"Timeline::Object","object_id":1})" +
            std::string(fields) + "}}"));
        EXPECT_TRUE(Reader::clipsOfObjects(graph).empty()) << fields;
    }
}

TEST(ShownValues, AreShort) {
    const ObjectGraph graph = Reader::readObjects(documentOf(archiveWith("")));
    EXPECT_EQ(shown(link(3), graph), json({{"class", "Timeline::Clip"}, {"id", 3}, {"name", "Beach"}}));
    EXPECT_EQ(shown(link(4), graph), json({{"class", "Timeline::Clip"}, {"id", 4}}));
    EXPECT_EQ(shown(link(99), graph), json({{"class", ""}, {"id", 99}}));
    EXPECT_EQ(shown({1, 2, 3, 4, 5, 6, 7, 8}, graph), json({1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(shown({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, graph), json({1, 2, 3, 4, 5, 6, 7, 8, "and 2 more"}));
    EXPECT_EQ(shown(json::parse("[[[[[1]]]],[[2]]]"), graph), json::parse(R"([[[["..."]]],[[2]]])"));
    EXPECT_EQ(shown(json::parse(R"({"a":{"b":1}})"), graph, 1), json({{"a", "..."}}));
    EXPECT_EQ(shown(json::parse(R"({"a":1,"b":2,"c":3,"d":4,"e":5,"f":6,"g":7,"h":8,"i":9})"), graph),
              json::parse(R"({"a":1,"b":2,"c":3,"d":4,"e":5,"f":6,"g":7,"h":8})"));
}

TEST(ShownValues, OfAnObjectWhoseNameIsNoTextHaveNone) {
    const ObjectGraph graph = Reader::readObjects(documentOf(
        R"({"version":"1.0","schemaVersion":70,"data":{"@meta":{"class_name":"Note","object_id":1},"name":5}})"));
    EXPECT_EQ(shown(link(1), graph), json({{"class", "Note"}, {"id", 1}}));
}

} // namespace
