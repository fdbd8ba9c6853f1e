// The conversion of an archive to JSON: objects, references, values. Arrays are tested in
// ConverterArraysTest.cpp.

#include "support/Conversion.h"

#include <gtest/gtest.h>

#include <type_traits>

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
using Tests::xml;

namespace {

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
    // The conversion does not know "StringPtr": it must have been replaced before.
    expectSame({{"@meta", {{"class_name", "StringPtr"}, {"object_id", 0}}}},
               valueOf("type='StringPtr' value='lost'"));
}

TEST(XmlToJson, EmbeddedObjectsKeepTheirPlaceAndId) {
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
    // In document order. The id 60, which is not predeclared, and those of the records are not considered.
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

TEST(XmlToJson, TheKeyOfABasePartIsAnyType) {
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

TEST(XmlToJson, AnObjectIsFullAtItsFirstReferenceAtAnyPosition) {
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
    // The Predeclarator can't be referred to, either.
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
    // Both have the id 3; the one that is no object is ignored.
    EXPECT_EQ(dataOf(ref("b", 3), object("B", 3) + object("Predeclarator", 3))["b"]["@meta"]["class_name"],
              "B");
}

TEST(XmlToJson, IdsAreReadSigned) {
    EXPECT_EQ(dataOf(ref("b", -3), object("B", -3))["b"]["@meta"]["object_id"], -3);
    EXPECT_EQ(dataOf(ref("b", -3) + ref("c", -3), object("B", -3))["c"]["@meta_reference"], -3);
    // A reference that is no number is 0, and no object has the id 0.
    expectSame(nullptr, dataOf("<b type='ObjectRef' value='18446744073709551615'/>", object("B", 0))["b"]);
    expectSame(nullptr, valueOf("type='ObjectRef'"));
}

TEST(XmlToJson, FieldsAreVisitedInDocumentOrderAndDepthFirst) {
    // The inner object is written in full inside the first field, although a later field refers to it
    // directly.
    const json data = dataOf(ref("z", 3) + ref("a", 4), object("B", 3, ref("inner", 4)) + object("C", 4));
    expectSame({{"@meta", {{"class_name", "C"}, {"object_id", 4}}}}, data["z"]["inner"]);
    expectSame({{"@meta_reference", 4}}, data["a"]);
    // A field that a later one of the same tag overwrites counts as visited.
    expectSame({{"@meta_reference", 3}}, dataOf(ref("f", 3) + ref("f", 3), object("B", 3))["f"]);
}

TEST(XmlToJson, ABasePartIsOneByItsTagAlone) {
    // The root itself and an entry's Data are no base parts, whatever they contain.
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

TEST(XmlToJson, TypesAreMatchedExactly) {
    for (const char* type :
         {"Bool", "int", "int32", "INT32_T", "string", "array", " String", "Double", "float"})
        EXPECT_EQ(valueOf("type='" + std::string(type) + "' value='1'")["@meta"]["class_name"], type);
}

TEST(XmlToJson, ValuesHaveNoFields) {
    expectSame("a", valueOf("type='String' value='a'", "<x type='int32_t' value='1'/>"));
    // Children of a value are ignored.
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

TEST(XmlToJson, ALongChainOfFirstReferencesConverts) {
    constexpr long long length = 200000; // recursion would need more stack than there is
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
    for (int level = 0; level < depth; ++level) { // from the inside out: the other order is slow in Qt's tree
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
