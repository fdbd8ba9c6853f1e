#include "Reader/Flatten.h"
#include "Reader/JsonText.h"
#include "support/Compare.h"
#include "support/Sanitizers.h"

#include <gtest/gtest.h>

using nlohmann::json;
using Reader::FlatDocument;
using Reader::flatten;
using Reader::FlattenNotes;

namespace {

json meta(const std::string& className, json id) {
    return {{"class_name", className}, {"object_id", std::move(id)}};
}

json object(const std::string& className, json id, json fields = json::object()) {
    fields["@meta"] = meta(className, std::move(id));
    return fields;
}

json link(json id) {
    return {{"@meta_reference", std::move(id)}};
}

json objectsOf(const FlatDocument& document) {
    json result = json::object();
    for (const auto& [id, value] : document.flat.objects)
        result[std::to_string(id)] = value;
    return result;
}

FlatDocument flattened(json root) {
    FlattenNotes notes;
    return flatten(std::move(root), notes);
}

json nested(FlatDocument document, std::size_t expectedLeftOut = 0) {
    std::size_t leftOut = 0;
    json result = Reader::nest(std::move(document), leftOut);
    EXPECT_EQ(leftOut, expectedLeftOut);
    return result;
}

void expectSame(const json& expected, const json& actual) {
    EXPECT_EQ(Tests::difference(expected, actual), "");
}

TEST(Flatten, EachClassObjectIsStoredUnderItsIdAndReplacedByALink) {
    const FlatDocument document = flattened(
        object("A", 2, {{"b", object("B", 7, {{"x", 1}})}, {"list", {object("C", 3), link(7), 5}}}));
    EXPECT_EQ(document.root, 2u);
    expectSame({{"2", object("A", 2, {{"b", link(7)}, {"list", {link(3), link(7), 5}}})},
                {"3", object("C", 3)},
                {"7", object("B", 7, {{"x", 1}})}},
               objectsOf(document));
}

TEST(Flatten, ClassObjectsInPlainObjectsAreFound) {
    expectSame(
        {{"2", object("A", 2, {{"entries", {{{"clip", link(3)}, {"timing", link(4)}}}}})},
         {"3", object("Clip", 3)},
         {"4", object("Timing", 4)}},
        objectsOf(flattened(object(
            "A", 2, {{"entries", {{{"clip", object("Clip", 3)}, {"timing", object("Timing", 4)}}}}}))));
}

TEST(Flatten, OnlyAnObjectUnderMetaMakesAClassObject) {
    const json plain = {{"@meta", "text"}, {"x", 1}};
    expectSame({{"2", object("A", 2, {{"p", plain}})}}, objectsOf(flattened(object("A", 2, {{"p", plain}}))));
    // An object without a class name is a class object, too; a value inside "@meta" is none.
    const json nameless = {{"@meta", {{"object_id", 3}, {"more", object("X", 9)}}}};
    expectSame({{"2", object("A", 2, {{"p", link(3)}})}, {"3", nameless}},
               objectsOf(flattened(object("A", 2, {{"p", nameless}}))));
}

TEST(Flatten, ObjectsWithoutAnIdGetNewOnesDepthFirst) {
    // Keys are visited sorted by bytes, an object before its members. 50 is the greatest id, from a dangling
    // link.
    FlattenNotes notes;
    const FlatDocument document = flatten(object("A", 2,
                                                 {{"a", object("B", nullptr, {{"c", object("C", 0)}})},
                                                  {"Z", object("D", -4)},
                                                  {"b", object("E", 1.5)},
                                                  {"c", object("F", "7")},
                                                  {"d", {{"@meta", {{"class_name", "G"}}}}},
                                                  {"z", link(50)}}),
                                          notes);
    EXPECT_EQ(notes.missingIds, 6u);
    expectSame({{"2", object("A", 2,
                             {{"Z", link(51)},
                              {"a", link(52)},
                              {"b", link(54)},
                              {"c", link(55)},
                              {"d", link(56)},
                              {"z", link(50)}})},
                {"51", object("D", 51)},
                {"52", object("B", 52, {{"c", link(53)}})},
                {"53", object("C", 53)},
                {"54", object("E", 54)},
                {"55", object("F", 55)},
                {"56", object("G", 56)}},
               objectsOf(document));
}

TEST(Flatten, ARootWithoutAnIdGetsOneToo) {
    const FlatDocument document = flattened(object("A", 0, {{"b", object("B", 4)}}));
    EXPECT_EQ(document.root, 5u);
    expectSame({{"4", object("B", 4)}, {"5", object("A", 5, {{"b", link(4)}})}}, objectsOf(document));
}

TEST(Flatten, AnIdThatIsTakenIsReplacedAndLinksGoToTheFirst) {
    FlattenNotes notes;
    const FlatDocument document =
        flatten(object("A", 2, {{"a", object("B", 3)}, {"b", object("C", 3)}, {"c", link(3)}}), notes);
    EXPECT_EQ(notes.duplicateIds, std::vector<unsigned long long>{3});
    EXPECT_TRUE(notes.redirected.empty());
    expectSame({{"2", object("A", 2, {{"a", link(3)}, {"b", link(4)}, {"c", link(3)}})},
                {"3", object("B", 3)},
                {"4", object("C", 4)}},
               objectsOf(document));
}

TEST(Flatten, LinksPreferAnObjectOfItsOwnToABasePart) {
    // The part keeps the id that it had first, and the link to it stays. All other links are redirected,
    // whether they are before, inside or after the object.
    FlattenNotes notes;
    const FlatDocument document = flatten(object("A", 2,
                                                 {{"Mid", object("Mid", 5)},
                                                  {"a", link(5)},
                                                  {"b", object("Clip", 5, {{"self", link(5)}})},
                                                  {"c", link(5)},
                                                  {"d", object("Other", 5)}}),
                                          notes);
    EXPECT_EQ(notes.duplicateIds, std::vector<unsigned long long>{5});
    expectSame(
        {{"2",
          object("A", 2, {{"Mid", link(5)}, {"a", link(6)}, {"b", link(6)}, {"c", link(6)}, {"d", link(7)}})},
         {"5", object("Mid", 5)},
         {"6", object("Clip", 6, {{"self", link(6)}})},
         {"7", object("Other", 7)}},
        objectsOf(document));
}

TEST(Flatten, WithoutAnObjectOfItsOwnALinkGoesToTheFirstPart) {
    const FlatDocument document = flattened(object(
        "A", 2,
        {{"Mid", object("Mid", 5)}, {"b", object("B", 3, {{"Mid", object("Mid", 5)}})}, {"c", link(5)}}));
    expectSame(link(5), document.flat.objects.at(2)["c"]);
    expectSame(object("Mid", 6), document.flat.objects.at(6));
}

TEST(Flatten, DanglingAndOddLinksStay) {
    const json fields = {{"a", link(99)},
                         {"b", link(0)},
                         {"c", link(-1)},
                         {"d", {{"@meta_reference", 2}, {"x", 1}}},
                         {"e", link("2")}};
    expectSame({{"2", object("A", 2, fields)}}, objectsOf(flattened(object("A", 2, fields))));
}

TEST(Flatten, NoIdIsLeftAboveTheGreatestOne) {
    EXPECT_THROW(flattened(object("A", 2, {{"a", object("B", 0)}, {"b", link(18446744073709551615ULL)}})),
                 std::length_error);
    EXPECT_NO_THROW(flattened(object("A", 2, {{"b", link(18446744073709551615ULL)}})));
}

TEST(Nest, EachObjectIsWrittenInFullAtItsFirstReferenceDepthFirst) {
    FlatDocument document;
    document.root = 2;
    document.flat.objects = {{2, object("A", 2, {{"Z", link(4)}, {"b", {link(3), link(4)}}, {"c", link(3)}})},
                             {3, object("B", 3, {{"up", link(2)}})},
                             {4, object("C", 4, {{"b", link(3)}})}};
    expectSame(object("A", 2,
                      {{"Z", object("C", 4, {{"b", object("B", 3, {{"up", link(2)}})}})},
                       {"b", {link(3), link(4)}},
                       {"c", link(3)}}),
               nested(std::move(document)));
}

TEST(Nest, AnEmbeddedObjectCountsAsAReferenceToItsEntry) {
    FlatDocument document;
    document.root = 2;
    document.flat.objects = {
        {2, object("A", 2, {{"a", object("Track", 3, {{"copy", true}})}, {"b", object("Track", 3)}})},
        {3, object("Track", 3, {{"type", 16}})}};
    expectSame(object("A", 2, {{"a", object("Track", 3, {{"type", 16}})}, {"b", link(3)}}),
               nested(std::move(document)));
}

TEST(Nest, AnEmbeddedObjectWithoutAnEntryIsKept) {
    FlatDocument document;
    document.root = 2;
    document.flat.objects = {{2, object("A", 2, {{"a", object("B", 9, {{"c", link(3)}})}})},
                             {3, object("C", 3)}};
    expectSame(object("A", 2, {{"a", object("B", 9, {{"c", object("C", 3)}})}}), nested(std::move(document)));
}

TEST(Nest, UnreachedObjectsAreLeftOutAndCounted) {
    FlatDocument document;
    document.root = 2;
    document.flat.objects = {{2, object("A", 2)}, {3, object("B", 3, {{"c", link(4)}})}, {4, object("C", 4)}};
    expectSame(object("A", 2), nested(std::move(document), 2));
}

TEST(Nest, WhatIsNoObjectStaysALink) {
    FlatDocument document;
    document.root = 2;
    document.flat.objects = {
        {2, object("A", 2, {{"a", link(3)}, {"b", link(4)}, {"c", link(5)}, {"d", object("D", 3)}})},
        {3, nullptr},
        {4, 7},
        {5, {{"x", 1}}}};
    // An entry without "@meta" gets its id, so that it is found when the text is read. An embedded object is
    // kept if the entry is no object.
    expectSame(object("A", 2,
                      {{"a", link(3)},
                       {"b", link(4)},
                       {"c", {{"@meta", {{"object_id", 5}}}, {"x", 1}}},
                       {"d", object("D", 3)}}),
               nested(std::move(document), 2));
}

TEST(Nest, TheKeyInTheDocumentIsTheId) {
    FlatDocument document;
    document.root = 2;
    document.flat.objects = {{2, object("A", 40, {{"a", link(3)}})}, {3, object("B", 2)}};
    expectSame(object("A", 2, {{"a", object("B", 3)}}), nested(std::move(document)));
}

TEST(Nest, FlattenGivesTheSameDocumentAgain) {
    FlatDocument document;
    document.root = 9;
    document.flat.objects = {
        {9, object("A", 9, {{"Mid", link(12)}, {"list", {link(3), link(9), link(77), nullptr, 1.5}}})},
        {3, object("B", 3, {{"back", link(12)}, {"name", "\u00e9"}})},
        {12, object("Mid", 12, {{"Inner", link(1)}})},
        {1, object("Inner", 1)}};
    const json before = objectsOf(document);
    const FlatDocument again = flattened(nested(std::move(document)));
    EXPECT_EQ(again.root, 9u);
    expectSame(before, objectsOf(again));
}

TEST(Nest, AMillionLevelsFlattenNestAndAreWritten) {
    constexpr unsigned long long length = Tests::isSanitized ? 100000 : 1000000;
    FlatDocument document;
    document.root = 1;
    for (unsigned long long id = 1; id <= length; ++id)
        document.flat.objects.emplace_hint(
            document.flat.objects.end(), id,
            object("L", id, id < length ? json({{"n", link(id + 1)}}) : json::object()));
    json deep = nested(std::move(document));
    const QByteArray text = Reader::writeJson(deep);
    EXPECT_TRUE(text.endsWith(QByteArray(100, '}')));
    const FlatDocument again = flattened(Reader::parseJson(text, "deep"));
    EXPECT_EQ(again.flat.objects.size(), length);
    expectSame(object("L", 1, {{"n", link(2)}}), again.flat.objects.at(1));
}

TEST(JsonText, IsWrittenAsTheLibraryWritesIt) {
    const json value = {{"a", {1, -2, 18446744073709551615ULL, 0.5, 1e300, 0.0, -0.0, 1.0}},
                        {"b", {"", "plain", "\"quoted\\", "\u00e9\n\x01\x7f", "\U0001F3AC"}},
                        {"", {nullptr, true, false, json::array(), json::object()}},
                        {"n", std::numeric_limits<double>::quiet_NaN()}};
    EXPECT_EQ(Reader::writeJson(value).toStdString(), value.dump());
    EXPECT_EQ(Reader::writeJson(7).toStdString(), "7");
}

} // namespace
