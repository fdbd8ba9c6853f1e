#include "Reader/Conversion.h"
#include "Util/XmlToJsonAdaptor.h"
#include "support/Compare.h"
#include "support/Documents.h"

#include <gtest/gtest.h>

#include <type_traits>

using Bundle::Backend;
using nlohmann::json;
using Tests::archive;
using Tests::predeclarator;
using Tests::xml;

namespace {

json convert(const QDomDocument& document) {
    return Util::XmlToJsonAdaptor().adapt(document);
}

/// The root object of an archive whose object 2 holds these fields.
json dataOf(const std::string& fields, const std::string& others = {}) {
    return convert(archive("<RootRef type='ObjectRef' value='2'/><RootObject type='A' objectId='2'>" +
                           fields + "</RootObject>" + others))["data"];
}

/// What one element becomes as the field "f".
json valueOf(const std::string& attributes, const std::string& content = {}, const std::string& others = {}) {
    return dataOf("<f " + attributes + ">" + content + "</f>", others)["f"];
}

std::string item(const std::string& content) {
    return "<Item type='Item' index='1'>" + content + "</Item>";
}

std::string ref(const std::string& tag, long long id) {
    return "<" + tag + " type='ObjectRef' value='" + std::to_string(id) + "'/>";
}

std::string object(const std::string& type, long long id, const std::string& content = {}) {
    return "<RootObject type='" + type + "' objectId='" + std::to_string(id) + "'>" + content +
           "</RootObject>";
}

void expectSame(const json& expected, const json& actual) {
    EXPECT_EQ(Tests::difference(expected, actual), "");
}

TEST(JsonMigrationAdaptor, ConvertsFromXmlToJsonOnly) {
    const Reader::Conversion conversion;
    EXPECT_TRUE(conversion.canConvert(Backend::Xml, Backend::Json));
    EXPECT_FALSE(conversion.canConvert(Backend::Json, Backend::Xml));
    EXPECT_FALSE(conversion.canConvert(Backend::Xml, Backend::Xml));
    EXPECT_FALSE(conversion.canConvert(Backend::Json, Backend::Json));
}

TEST(JsonMigrationAdaptor, IsNeverNeededForJson) {
    const Reader::Conversion conversion;
    EXPECT_FALSE(conversion.needAdaptForActualVersion(json()));
    EXPECT_FALSE(conversion.needAdaptForActualVersion(json::object()));
    EXPECT_FALSE(conversion.needAdaptForActualVersion({{"version", "0.1"}, {"data", nullptr}}));
}

TEST(JsonMigrationAdaptor, HandsItsNumberBackAndNotesThatItRan) {
    struct Numbered : Util::JsonMigrationAdaptor {
        using JsonMigrationAdaptor::JsonMigrationAdaptor;
        int actualVersion() const override { return 0; }
        QString name() const override { return {}; }
    };
    Numbered adaptor(-7);
    EXPECT_FALSE(adaptor.converted());
    const auto [version, value] = adaptor.convert(xml("<NoArchive/>"));
    EXPECT_EQ(version, -7);
    expectSame({{"data", nullptr}, {"version", "1.0"}}, value);
    EXPECT_TRUE(adaptor.converted());
    const Numbered copy(adaptor);
    EXPECT_TRUE(copy.converted());
    EXPECT_EQ(adaptor.convert(xml("<NoArchive/>")).first, -7);
    EXPECT_TRUE(adaptor.converted());
}

TEST(XmlToJson, IsNoStep) {
    EXPECT_FALSE((std::is_polymorphic_v<Util::XmlToJsonAdaptor>));
    EXPECT_TRUE(std::is_empty_v<Util::XmlToJsonAdaptor>);
}

TEST(XmlToJson, WithoutArchiveDataIsNull) {
    expectSame({{"data", nullptr}, {"version", "1.0"}}, convert(QDomDocument()));
    expectSame({{"data", nullptr}, {"version", "1.0"}}, convert(xml("<X><Archive/></X>")));
}

TEST(XmlToJson, WithoutRootRefDataIsAnEmptyClassObject) {
    expectSame({{"@meta", {{"class_name", ""}, {"object_id", 0}}}}, convert(archive(""))["data"]);
}

TEST(XmlToJson, NullRootRefGivesNull) {
    expectSame(nullptr, convert(archive("<RootRef type='ObjectRef' value='0'/>"))["data"]);
}

TEST(XmlToJson, DanglingReferenceBecomesAnEmptyClassObjectAndThenALink) {
    expectSame({{"@meta", {{"class_name", "A"}, {"object_id", 2}}},
                {"f", {{"@meta", {{"class_name", ""}, {"object_id", 0}}}}},
                {"g", {{"@meta_reference", 9}}}},
               dataOf(ref("f", 9) + ref("g", 9)));
}

TEST(XmlToJson, Scalars) {
    expectSame(true, valueOf("type='bool' value='1'"));
    expectSame(true, valueOf("type='bool' value='-3'"));
    expectSame(false, valueOf("type='bool' value='0'"));
    expectSame(false, valueOf("type='bool' value='true'"));
    expectSame(false, valueOf("type='bool'"));
    expectSame(-5, valueOf("type='int32_t' value='-5'"));
    expectSame(0, valueOf("type='int32_t' value='2147483648'"));
    expectSame(4294967295u, valueOf("type='uint32_t' value='4294967295'"));
    expectSame(0, valueOf("type='uint32_t' value='-1'"));
    expectSame(-9223372036854775807LL - 1, valueOf("type='int64_t' value='-9223372036854775808'"));
    expectSame(18446744073709551615ULL, valueOf("type='uint64_t' value='18446744073709551615'"));
    expectSame(0, valueOf("type='int64_t' value='12 apples'"));
    expectSame("", valueOf("type='String'"));
    expectSame("a \u00e9 \U0001F3AC", valueOf("type='String' value='a \u00e9 \U0001F3AC'"));
    expectSame("", valueOf("type='String' value='' isNull='1'"));
}

TEST(XmlToJson, NumberTypesAreKept) {
    EXPECT_EQ(valueOf("type='int32_t' value='5'").type(), json::value_t::number_integer);
    EXPECT_EQ(valueOf("type='int64_t' value='5'").type(), json::value_t::number_integer);
    EXPECT_EQ(valueOf("type='uint32_t' value='5'").type(), json::value_t::number_unsigned);
    EXPECT_EQ(valueOf("type='uint64_t' value='5'").type(), json::value_t::number_unsigned);
    EXPECT_EQ(valueOf("type='double' binaryData='P+AAAAAAAAA='").type(), json::value_t::number_float);
    EXPECT_EQ(dataOf(ref("f", 2))["f"]["@meta_reference"].type(), json::value_t::number_integer);
    EXPECT_EQ(dataOf("")["@meta"]["object_id"].type(), json::value_t::number_integer);
}

TEST(XmlToJson, DoublesComeFromBinaryDataAlone) {
    expectSame(0.5, valueOf("type='double' value='7' binaryData='P+AAAAAAAAA='"));
    expectSame(0.0, valueOf("type='double' value='7'"));
    expectSame(0.0, valueOf("type='double' value='inf' binaryData='f/AAAAAAAAA='")); // an infinity
    EXPECT_TRUE(std::isnan(valueOf("type='double' binaryData='f/gAAAAAAAA='").get<double>()));
}

TEST(XmlToJson, Points) {
    expectSame({{"x", 1}, {"y", 2}}, valueOf("type='Point' value='1;2'"));
    expectSame({{"x", 0}, {"y", 0}}, valueOf("type='Point' value=';'"));
    expectSame({{"x", 0}, {"y", 2}}, valueOf("type='Point' value='1.5;2'"));
    expectSame(nullptr, valueOf("type='Point' value='1;2;3'"));
    expectSame(nullptr, valueOf("type='Point' value='5'"));
    expectSame(nullptr, valueOf("type='Point'"));
    expectSame({{"x", 1.5}, {"y", 2.0}}, valueOf("type='PointF' value='1.5;2'"));
    expectSame(nullptr, valueOf("type='PointF' value='1.5'"));
}

TEST(XmlToJson, ImagesAndBlobs) {
    expectSame({{"ref", "a.png"}}, valueOf("type='ImageRef' ref='a.png' value='b'"));
    expectSame({{"ref", ""}}, valueOf("type='BlobRef' value='b'"));
}

TEST(XmlToJson, UnknownTypesBecomeClassObjects) {
    expectSame({{"@meta", {{"class_name", "Foo::Bar"}, {"object_id", 0}}}}, valueOf("type='Foo::Bar'"));
    expectSame({{"@meta", {{"class_name", ""}, {"object_id", 7}}}}, valueOf("objectId='7'"));
    // Why "StringPtr" has to go before: it is no value.
    expectSame({{"@meta", {{"class_name", "StringPtr"}, {"object_id", 0}}}},
               valueOf("type='StringPtr' value='lost'"));
}

TEST(XmlToJson, EmbeddedObjectsStandInPlaceWithTheirId) {
    expectSame({{"@meta", {{"class_name", "B"}, {"object_id", 5}}}, {"x", 1}, {"n", nullptr}},
               valueOf("type='B' objectId='5'", "<x type='int32_t' value='1'/>" + ref("n", 0)));
    expectSame({{"@meta", {{"class_name", "B"}, {"object_id", -5}}}}, valueOf("type='B' objectId='-5'"));
}

TEST(XmlToJson, ASecondChildOfOneTagOverwritesTheFirst) {
    expectSame({{"@meta", {{"class_name", "A"}, {"object_id", 2}}}, {"x", "second"}},
               dataOf("<x type='int32_t' value='1'/><x type='String' value='second'/>"));
}

TEST(XmlToJson, BasePartsGetIdsAboveTheGreatestPredeclaredId) {
    const std::string base = "<BaseOfObject type='Mid' objectId='2'><BaseOfObject type='Inner' objectId='2'/>"
                             "</BaseOfObject>";
    const json data = convert(archive(ref("RootRef", 2) + predeclarator({{"A", 2}, {"B", 40}, {"C", 3}}) +
                                      object("A", 2, base + ref("b", 60)) +
                                      object("B", 60, "<BaseOfObject type='Mid' objectId='60'/>")))["data"];
    // In order of the walk; the id 60, which is not predeclared, and those of the records play no part.
    expectSame({{"@meta", {{"class_name", "A"}, {"object_id", 2}}},
                {"Mid",
                 {{"@meta", {{"class_name", "Mid"}, {"object_id", 41}}},
                  {"Inner", {{"@meta", {{"class_name", "Inner"}, {"object_id", 42}}}}}}},
                {"b",
                 {{"@meta", {{"class_name", "B"}, {"object_id", 60}}},
                  {"Mid", {{"@meta", {{"class_name", "Mid"}, {"object_id", 43}}}}}}}},
               data);
}

TEST(XmlToJson, BasePartsCountFromOneWithoutPredeclarations) {
    EXPECT_EQ(dataOf("<BaseOfObject type='Mid' objectId='2'/>")["Mid"]["@meta"]["object_id"], 1);
}

TEST(XmlToJson, TheKeyOfABasePartIsItsTypeWhateverThatIs) {
    const json data = dataOf("<BaseOfObject type='int32_t' value='7'/>");
    expectSame(7, data["int32_t"]);
    const json odd = dataOf("<BaseOfObject type='@meta' objectId='2'/>");
    expectSame({{"@meta", {{"@meta", {{"class_name", "@meta"}, {"object_id", 1}}}}}}, odd);
}

TEST(XmlToJson, CyclesEndInALink) {
    expectSame({{"@meta", {{"class_name", "A"}, {"object_id", 2}}},
                {"b", {{"@meta", {{"class_name", "B"}, {"object_id", 3}}}, {"a", {{"@meta_reference", 2}}}}}},
               dataOf(ref("b", 3), object("B", 3, ref("a", 2))));
}

TEST(XmlToJson, AnObjectIsFullAtItsFirstReferenceWhereverItStands) {
    const std::string late = object("Timeline::Clip", 3, "<x type='int32_t' value='1'/>");
    const json data = dataOf("<p type='Array' size='1'>" + item(ref("Data", 3)) +
                                 "</p><q type='Array' size='1'>" + item(ref("Data", 3)) + "</q>",
                             late);
    expectSame(json::array({{{"@meta", {{"class_name", "Timeline::Clip"}, {"object_id", 3}}}, {"x", 1}}}),
               data["p"]);
    expectSame(json::array({{{"@meta_reference", 3}}}), data["q"]);
}

TEST(XmlToJson, UnreachedObjectsAndThePredeclaratorDoNotAppear) {
    const json result = convert(
        archive(ref("RootRef", 2) + predeclarator({{"A", 2}, {"B", 3}}) + object("A", 2) + object("B", 3)));
    expectSame({{"data", {{"@meta", {{"class_name", "A"}, {"object_id", 2}}}}}, {"version", "1.0"}}, result);
    // The Predeclarator can't be referred to either.
    expectSame({{"@meta", {{"class_name", ""}, {"object_id", 0}}}},
               convert(archive(ref("RootRef", 1) + predeclarator({})))["data"]);
}

TEST(XmlToJson, OfTwoObjectsWithOneIdTheLaterCounts) {
    EXPECT_EQ(dataOf(ref("b", 3), object("B", 3) + object("C", 3))["b"]["@meta"]["class_name"], "C");
}

TEST(XmlToJson, ANestedRootObjectIsKnownByItsIdAndItsPlaceDoesNotCountAsVisited) {
    const json data = dataOf("<RootObject type='B' objectId='3'/>" + ref("b", 3));
    const json full = {{"@meta", {{"class_name", "B"}, {"object_id", 3}}}};
    expectSame(full, data["RootObject"]);
    expectSame(full, data["b"]);
}

TEST(XmlToJson, ARootObjectMayBeAValueOrAReference) {
    expectSame("text", dataOf(ref("f", 3), "<RootObject type='String' objectId='3' value='text'/>")["f"]);
    expectSame(
        {{"@meta", {{"class_name", "B"}, {"object_id", 4}}}},
        dataOf(ref("f", 3), "<RootObject type='ObjectRef' objectId='3' value='4'/>" + object("B", 4))["f"]);
    // A reference to itself ends in a link.
    expectSame({{"@meta_reference", 3}},
               dataOf(ref("f", 3), "<RootObject type='ObjectRef' objectId='3' value='3'/>")["f"]);
}

TEST(XmlToJson, Arrays) {
    const std::string one = item("<Data type='int32_t' value='1'/>");
    expectSame(json::array(), valueOf("type='Array' size='0'"));
    expectSame(json::array({1, 1}), valueOf("type='Array' size='4294967295'", one + one)); // size is a hint
    expectSame(json::array({1}),
               valueOf("type='Array'", "<Other><Data type='int32_t' value='2'/></Other>" + one));
}

TEST(XmlToJson, NullEntriesLeaveNoTrace) {
    const std::string text = item("<Data type='String' value='a'/>");
    expectSame(json::array({"a", "a"}), valueOf("type='Array' size='3'", text + item(ref("Data", 0)) + text));
    expectSame(json::array(), valueOf("type='Array' size='2'", item(ref("Data", 0)) + item("")));
    expectSame(json::array(), valueOf("type='Array' size='1'", item("<Data type='Point' value='1'/>")));
}

TEST(XmlToJson, ANullDataFallsBackToTheOtherFormsOfAnEntry) {
    const std::string pair = "<First type='int32_t' value='1'/><Second type='int32_t' value='2'/>";
    expectSame(json::array({{{"first", 1}, {"second", 2}}}),
               valueOf("type='Array'", item(ref("Data", 0) + pair)));
    const std::string entry = "<Key type='int32_t' value='3'/><Value type='int32_t' value='4'/>";
    expectSame(json::array({{{"first", 3}, {"second", 4}}}), valueOf("type='Array'", item(pair + entry)));
    // The null may come from anywhere; the id that led to it stays visited.
    const json data = dataOf("<f type='Array'>" + item(ref("Data", 3) + pair) + "</f>" + ref("g", 3),
                             "<RootObject type='Point' objectId='3' value='1'/>");
    expectSame(json::array({{{"first", 1}, {"second", 2}}}), data["f"]);
    expectSame({{"@meta_reference", 3}}, data["g"]);
}

TEST(XmlToJson, UnlikeValuesMakeATuple) {
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
    // The class comes from the predeclarations alone.
    expectSame({{"first", clip},
                {"second", {{"@meta", {{"class_name", "Timeline::ClipTiming"}, {"object_id", 8}}}}}},
               entryWith("<Value type='Timeline::ClipTiming' objectId='8'/>", "Effect::Blur"));
}

/// A map from the transition 3 to one pair of clips, with the second reference and the array's size as given.
json transitionEntry(const std::string& second, const std::string& size = "1",
                     const std::vector<std::pair<std::string, long long>>& records = {
                         {"A", 2}, {"Transition::Fade", 3}, {"Timeline::Clip", 4}, {"Timeline::Clip", 5}}) {
    const std::string value =
        "<Value type='Array' size='" + size + "'>" + item(ref("First", 4) + second) + "</Value>";
    return convert(archive(ref("RootRef", 2) + predeclarator(records) +
                           object("A", 2, "<f type='Array'>" + item(ref("Key", 3) + value) + "</f>") +
                           object("Transition::Fade", 3, ref("clip", 4)) + object("Timeline::Clip", 4) +
                           object("Timeline::Clip", 5)))["data"]["f"][0];
}

TEST(XmlToJson, TransitionsStandBetweenTwoClips) {
    const json from = {{"@meta", {{"class_name", "Timeline::Clip"}, {"object_id", 4}}}};
    const json to = {{"@meta", {{"class_name", "Timeline::Clip"}, {"object_id", 5}}}};
    // The clips come before the transition: the one that it refers to is full in the pair.
    const json fade = {{"@meta", {{"class_name", "Transition::Fade"}, {"object_id", 3}}},
                       {"clip", {{"@meta_reference", 4}}}};
    expectSame({{"clipFrom", from}, {"clipTo", to}, {"transition", fade}}, transitionEntry(ref("Second", 5)));
    expectSame({{"clipFrom", from}, {"clipTo", nullptr}, {"transition", fade}},
               transitionEntry(ref("Second", 0)));
}

TEST(XmlToJson, OtherTransitionEntriesFallToFirstAndSecond) {
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

TEST(XmlToJson, AReferenceThatIsNoNumberIsTheNullReference) {
    expectSame(nullptr, valueOf("type='ObjectRef' value='abc'"));
    EXPECT_TRUE(transitionEntry("<Second type='ObjectRef' value='abc'/>").contains("clipFrom"));
}

TEST(XmlToJson, TheLaterPredeclarationOfAnIdCounts) {
    const json entry = transitionEntry(ref("Second", 5), "1",
                                       {{"A", 2},
                                        {"Effect::Blur", 3},
                                        {"Timeline::Clip", 4},
                                        {"Timeline::Clip", 5},
                                        {"Transition::Fade", 3}});
    EXPECT_TRUE(entry.contains("clipFrom"));
}

TEST(XmlToJson, TheGreatestPredeclaredIdMayBeNegativeZeroOrTheGreatestOfAll) {
    const auto partId = [](const std::vector<std::pair<std::string, long long>>& records) {
        return convert(archive(
            ref("RootRef", 2) + predeclarator(records) +
            object("A", 2, "<BaseOfObject type='B' objectId='2'/>")))["data"]["B"]["@meta"]["object_id"];
    };
    EXPECT_EQ(partId({{"A", -7}, {"B", -9}}), -6);
    EXPECT_EQ(partId({{"A", 0}}), 1);
    EXPECT_EQ(partId({{"A", 9223372036854775806}}), 9223372036854775807);
    EXPECT_EQ(partId({{"A", 9223372036854775807}}), -9223372036854775807 - 1); // wraps
}

TEST(XmlToJson, APredeclarationWithoutDataOrIdIsOneOfZero) {
    const std::string record = "<RootObject type='Predeclarator' objectId='1'><predeclarations type='Array'>"
                               "<Item/><Item><Data type='Predeclare' objectId='900'>"
                               "<typeName value='A'/></Data></Item></predeclarations></RootObject>";
    const json data = convert(archive(ref("RootRef", 2) + record +
                                      object("A", 2, "<BaseOfObject type='B' objectId='2'/>")))["data"];
    EXPECT_EQ(data["B"]["@meta"]["object_id"], 1);
}

TEST(XmlToJson, AllPredeclaratorsCountAndOfEachTheFirstList) {
    const auto record = [](const std::string& type, long long id) {
        return "<Item><Data><typeName value='" + type + "'/>" + ref("oid", id) + "</Data></Item>";
    };
    const auto predeclarations = [](const std::string& records) {
        return "<predeclarations type='Array' size='1'>" + records + "</predeclarations>";
    };
    const std::string both =
        object("Predeclarator", 1,
               predeclarations(record("Timeline::Clip", 3)) + predeclarations(record("Timeline::Clip", 90))) +
        "<in>" + object("Predeclarator", 7, predeclarations(record("Timeline::Link", 4))) + "</in>";
    const json data = convert(archive(
        ref("RootRef", 2) + both +
        object("A", 2,
               "<BaseOfObject type='B'/><f type='Array'>" + item(ref("Key", 3) + ref("Value", 4)) + "</f>") +
        object("X", 3) + object("Y", 4)))["data"];
    EXPECT_EQ(data["B"]["@meta"]["object_id"], 5); // not 91
    EXPECT_TRUE(data["f"][0].contains("slave"));
    EXPECT_TRUE(data["f"][0].contains("link"));
}

TEST(XmlToJson, APredeclaratorIsNoObjectWhateverItsId) {
    // Both have the id 3; the one that is no object does not hide the other.
    EXPECT_EQ(dataOf(ref("b", 3), object("B", 3) + object("Predeclarator", 3))["b"]["@meta"]["class_name"],
              "B");
}

TEST(XmlToJson, IdsAreReadSigned) {
    EXPECT_EQ(dataOf(ref("b", -3), object("B", -3))["b"]["@meta"]["object_id"], -3);
    EXPECT_EQ(dataOf(ref("b", -3) + ref("c", -3), object("B", -3))["c"]["@meta_reference"], -3);
    // One that is no number is 0, and nothing leads to 0.
    expectSame(nullptr, dataOf("<b type='ObjectRef' value='18446744073709551615'/>", object("B", 0))["b"]);
    expectSame(nullptr, valueOf("type='ObjectRef'"));
}

TEST(XmlToJson, KeyAndFirstComeBeforeValueAndSecond) {
    const json full = {{"@meta", {{"class_name", "B"}, {"object_id", 3}}}};
    const json link = {{"@meta_reference", 3}};
    // Whatever their order in the file.
    expectSame(
        json::array({{{"first", full}, {"second", link}}}),
        dataOf("<f type='Array'>" + item(ref("Value", 3) + ref("Key", 3)) + "</f>", object("B", 3))["f"]);
    expectSame(
        json::array({{{"first", full}, {"second", link}}}),
        dataOf("<f type='Array'>" + item(ref("Second", 3) + ref("First", 3)) + "</f>", object("B", 3))["f"]);
}

TEST(XmlToJson, FieldsAreMetInDocumentOrderAndDepthFirst) {
    // The inner object is full inside the first field, though a later field refers to it directly.
    const json data = dataOf(ref("z", 3) + ref("a", 4), object("B", 3, ref("inner", 4)) + object("C", 4));
    expectSame({{"@meta", {{"class_name", "C"}, {"object_id", 4}}}}, data["z"]["inner"]);
    expectSame({{"@meta_reference", 4}}, data["a"]);
    // Also a field that a later one of the same tag overwrites has been met.
    expectSame({{"@meta_reference", 3}}, dataOf(ref("f", 3) + ref("f", 3), object("B", 3))["f"]);
}

TEST(XmlToJson, EntriesOfEachKindAreAlikeOrATuple) {
    const std::string list = item("<Data type='Array'>" + item("<Data type='bool' value='1'/>") + "</Data>");
    const std::string none = item("<Data type='Array' size='0'/>");
    const std::string embedded = item("<Data type='B' objectId='5'/>");
    const std::string link = item(ref("Data", 2)); // of the object under way: a link, and so an object too
    const std::string yes = item("<Data type='bool' value='1'/>");
    expectSame(json::array({json::array({true}), json::array()}), valueOf("type='Array'", list + none));
    const json b = {{"@meta", {{"class_name", "B"}, {"object_id", 5}}}};
    expectSame(json::array({b, {{"@meta_reference", 2}}}), valueOf("type='Array'", embedded + link));
    expectSame({{"element_0", b}, {"element_1", true}}, valueOf("type='Array'", embedded + yes));
    expectSame({{"element_0", json::array()}, {"element_1", true}}, valueOf("type='Array'", none + yes));
    // A null entry takes no position.
    expectSame({{"element_0", true}, {"element_1", "a"}},
               valueOf("type='Array'", yes + item(ref("Data", 0)) + item("<Data type='String' value='a'/>")));
    // A tuple inside an array is an object like others.
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

TEST(XmlToJson, ABasePartIsOneByItsTagAlone) {
    // The root itself and an entry's Data are none, whatever they hold.
    const json data =
        convert(archive("<RootRef type='A' objectId='8'><BaseOfObject objectId='8'/></RootRef>"))["data"];
    expectSame({{"@meta", {{"class_name", "A"}, {"object_id", 8}}},
                {"", {{"@meta", {{"class_name", ""}, {"object_id", 1}}}}}},
               data);
}

TEST(XmlToJson, TheOuterPartIsNumberedBeforeTheInnerAndBeforeWhatFollows) {
    const json data = dataOf("<f type='B' objectId='5'><BaseOfObject type='C'><BaseOfObject type='D'/>"
                             "</BaseOfObject></f><BaseOfObject type='E'/>");
    EXPECT_EQ(data["f"]["C"]["@meta"]["object_id"], 1);
    EXPECT_EQ(data["f"]["C"]["D"]["@meta"]["object_id"], 2);
    EXPECT_EQ(data["E"]["@meta"]["object_id"], 3);
}

TEST(XmlToJson, TwoBasePartsOfOneTypeTakeTwoIdsAndTheLaterStays) {
    const json data = dataOf("<BaseOfObject type='B'/><BaseOfObject type='B'/>");
    EXPECT_EQ(data["B"]["@meta"]["object_id"], 2);
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
    // Further items of the pair's array leave no trace, as long as its size says one.
    EXPECT_EQ(entry(fade, "<Value type='Array' size='1'>" + item(ref("First", 0) + ref("Second", 0)) +
                              item(embedded + ref("Second", 0)) + "</Value>")
                  .size(),
              3U);
    // Each of these is an entry like others.
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
    // The prefix decides, to the letter.
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

TEST(XmlToJson, NumbersAtTheirLimitsAndBeyond) {
    expectSame(-2147483648LL, valueOf("type='int32_t' value='-2147483648'"));
    expectSame(0, valueOf("type='uint32_t' value='4294967296'"));
    expectSame(0, valueOf("type='int64_t' value='9223372036854775808'"));
    expectSame(0, valueOf("type='uint64_t' value='18446744073709551616'"));
    expectSame(0, valueOf("type='uint64_t' value='-1'"));
    expectSame(0, valueOf("type='int32_t' value='1.0'"));
    expectSame(0, valueOf("type='int32_t' value='0x1F'"));
    expectSame({{"x", 0}, {"y", -2147483648LL}}, valueOf("type='Point' value='2147483648;-2147483648'"));
    expectSame({{"x", 0.0}, {"y", -0.25}}, valueOf("type='PointF' value='1,5;-25e-2'"));
    expectSame({{"x", 0.0}, {"y", 0.0}}, valueOf("type='PointF' value=';'"));
    EXPECT_EQ(valueOf("type='PointF' value='1;2'")["x"].type(), json::value_t::number_float);
    EXPECT_EQ(valueOf("type='Point' value='1;2'")["x"].type(), json::value_t::number_integer);
}

TEST(XmlToJson, TypesAreMatchedToTheLetter) {
    for (const char* type :
         {"Bool", "int", "int32", "INT32_T", "string", "array", " String", "Double", "float"})
        EXPECT_EQ(valueOf("type='" + std::string(type) + "' value='1'")["@meta"]["class_name"], type);
}

TEST(XmlToJson, ValuesHaveNoFields) {
    expectSame("a", valueOf("type='String' value='a'", "<x type='int32_t' value='1'/>"));
    // What stands below a value is not met.
    const json data = dataOf("<f type='String'>" + ref("x", 3) + "</f>" + ref("g", 3), object("B", 3));
    expectSame({{"@meta", {{"class_name", "B"}, {"object_id", 3}}}}, data["g"]);
}

TEST(XmlToJson, OfSeveralRootReferencesTheFirstCounts) {
    EXPECT_EQ(
        convert(archive("<in>" + ref("RootRef", 4) + "</in>" + ref("RootRef", 3) + ref("RootRef", 2) +
                        object("A", 2) + object("B", 3) + object("C", 4)))["data"]["@meta"]["class_name"],
        "B");
}

TEST(XmlToJson, CommentsAndTextsBetweenElementsDoNotCount) {
    expectSame(
        {{"@meta", {{"class_name", "A"}, {"object_id", 2}}}, {"f", json::array({1})}},
        dataOf(
            "text<!-- <x/> --><f type='Array'> <!--c--><Item> <Data type='int32_t' value='1'/>t</Item></f>"));
}

TEST(XmlToJson, TheSameTwice) {
    const QDomDocument document =
        archive(ref("RootRef", 2) + object("A", 2, "<BaseOfObject type='B'/>" + ref("f", 2)));
    Util::XmlToJsonAdaptor adaptor;
    EXPECT_EQ(adaptor.adapt(document).dump(), adaptor.adapt(document).dump()); // no state is left behind
}

TEST(XmlToJson, TheDocumentIsNotChanged) {
    const QDomDocument document = archive(ref("RootRef", 2) + object("A", 2, ref("f", 9)));
    const QByteArray before = document.toByteArray(1);
    convert(document);
    EXPECT_EQ(document.toByteArray(1), before);
}

TEST(XmlToJson, AChainOfAMillionFirstReferencesConverts) {
    constexpr long long length = 1000000;
    QDomDocument document;
    QDomElement archive = document.createElement("Archive");
    document.appendChild(archive);
    const auto reference = [&](const QString& tag, long long id) {
        QDomElement e = document.createElement(tag);
        e.setAttribute("type", "ObjectRef");
        e.setAttribute("value", QString::number(id));
        return e;
    };
    archive.appendChild(reference("RootRef", 1));
    for (long long id = 1; id <= length; ++id) {
        QDomElement link = document.createElement("RootObject");
        link.setAttribute("type", "Link");
        link.setAttribute("objectId", QString::number(id));
        link.appendChild(reference("next", id == length ? 0 : id + 1));
        archive.appendChild(link);
    }
    const json result = convert(document);
    const json* value = &result["data"];
    long long count = 0;
    for (; value->is_object(); value = &(*value)["next"])
        ASSERT_EQ((*value)["@meta"]["object_id"], ++count);
    EXPECT_EQ(count, length);
}

TEST(XmlToJson, ElementsNestedAHundredThousandDeepConvert) {
    constexpr int depth = 100000;
    QDomDocument document;
    QDomElement inner;
    for (int level = 0; level < depth; ++level) { // from inside out: Qt's tree is slow the other way round
        QDomElement e = document.createElement("f");
        e.setAttribute("type", "A");
        if (!inner.isNull())
            e.appendChild(inner);
        inner = e;
    }
    QDomElement archive = document.createElement("Archive");
    QDomElement root = document.createElement("RootRef");
    root.setAttribute("type", "A");
    root.appendChild(inner);
    archive.appendChild(root);
    document.appendChild(archive);
    const json result = convert(document);
    int count = 0;
    for (const json* value = &result["data"]; value->contains("f"); value = &(*value)["f"])
        ++count;
    EXPECT_EQ(count, depth);
}

} // namespace
