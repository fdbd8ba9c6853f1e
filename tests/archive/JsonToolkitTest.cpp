// The flat JSON document and the toolkit on it, operation by operation.

#include "Archive/Archive.h"
#include "Archive/Internal/FlatObjects.h"
#include "Serialize/Json/FlatObject.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

namespace {

using nlohmann::json;
using Serialize::Json::FlatObject;
using Serialize::Json::getAnyObjectId;
using Serialize::Json::getClassName;
using Serialize::Json::getObjectId;
using Serialize::Json::getReferenceObjectId;
using Serialize::Json::MetaDetails;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StrEq;
using testing::ThrowsMessage;
using testing::UnorderedElementsAre;

using Id = unsigned long long;
constexpr Id greatestId = std::numeric_limits<Id>::max();

json object(const std::string& className, Id id) {
    return {{"@meta", {{"class_name", className}, {"object_id", id}}}};
}

FlatObject documentOf(const std::vector<std::pair<std::string, Id>>& objects) {
    FlatObject document;
    for (const auto& [className, id] : objects)
        document.objects[id] = object(className, id);
    return document;
}

TEST(FlatObjectKeys, AreTheFormatsOwn) {
    EXPECT_EQ(std::string(MetaDetails::s_meta), "@meta");
    EXPECT_EQ(std::string(MetaDetails::s_object_id), "object_id");
}

// Creating objects and references.

TEST(FlatObjectCreate, FirstIdIsOne) {
    FlatObject document;
    EXPECT_TRUE(document.objects.empty());
    json* first = document.createObject("A::B");
    EXPECT_EQ(*first, object("A::B", 1));
    EXPECT_EQ(first, &document.objects.at(1));
    EXPECT_EQ(*document.createObject("C"), object("C", 2));
    EXPECT_EQ(document.objects.size(), 2U);
}

TEST(FlatObjectCreate, IdIsTheGreatestPlusOneAndGapsStay) {
    FlatObject document = documentOf({{"A", 3}, {"A", 40}});
    EXPECT_EQ(*document.createObject("B"), object("B", 41));
    document.objects.erase(41);
    EXPECT_EQ(*document.createObject("C"), object("C", 41)); // by the objects that exist now
}

TEST(FlatObjectCreate, IdIsComputedFromTheKeysOfTheMap) {
    FlatObject document;
    document.objects[7] = object("A", 100);
    EXPECT_EQ(*document.createObject("B"), object("B", 8));
    FlatObject zero;
    zero.objects[0] = object("A", 0);
    EXPECT_EQ(*zero.createObject("B"), object("B", 1));
}

TEST(FlatObjectCreate, GreatestIdIsTheLast) {
    FlatObject document = documentOf({{"A", greatestId - 1}});
    EXPECT_EQ(*document.createObject("B"), object("B", greatestId));
    EXPECT_THAT([&] { document.createObject("C"); }, ThrowsMessage<std::logic_error>(Not(IsEmpty())));
    EXPECT_EQ(document.objects.size(), 2U);
}

TEST(FlatObjectCreate, IdIsAnUnsignedNumber) {
    FlatObject document;
    EXPECT_TRUE((*document.createObject("A"))["@meta"]["object_id"].is_number_unsigned());
}

TEST(FlatObjectCreate, PointersStayValid) {
    FlatObject document;
    json* first = document.createObject("A");
    for (int i = 0; i < 1000; ++i)
        document.createObject("B");
    (*first)["field"] = 5;
    EXPECT_EQ(document.objects.at(1)["field"], 5);
}

TEST(FlatObjectReference, ToAnObjectAPointerOrAnId) {
    FlatObject document = documentOf({{"A", 3}});
    const json reference = {{"@meta_reference", 3}};
    EXPECT_EQ(document.createRef(document.objects.at(3)), reference);
    EXPECT_EQ(document.createRef(&document.objects.at(3)), reference);
    EXPECT_EQ(document.createRef(Id{3}), reference);
    EXPECT_EQ(document.createRef(greatestId).dump(), "{\"@meta_reference\":18446744073709551615}");
    EXPECT_EQ(document.objects.size(), 1U);
}

TEST(FlatObjectReference, ToWhatIsNoClassObjectIsNull) {
    const FlatObject document;
    EXPECT_TRUE(document.createRef(json{{"field", 1}}).is_null());
    EXPECT_TRUE(document.createRef(json("text")).is_null());
    EXPECT_TRUE(document.createRef(static_cast<const json*>(nullptr)).is_null());
}

// Selecting objects.

TEST(FlatObjectSelect, FirstOfAClassIsTheOneOfTheLowestId) {
    FlatObject document = documentOf({{"B", 9}, {"A", 2}, {"B", 5}});
    EXPECT_EQ(document.firstObjectByClassName("B"), &document.objects.at(5));
    EXPECT_EQ(document.firstObjectByClassName("C"), nullptr);
    EXPECT_EQ(FlatObject().firstObjectByClassName("B"), nullptr);
}

TEST(FlatObjectSelect, ByExactClass) {
    FlatObject document = documentOf(
        {{"Effect::Lut", 1}, {"Effect::Object", 2}, {"Effect::Objects", 3}, {"Effect::Object", 4}});
    document.objects[1]["Effect::Object"] = document.createRef(Id{2});
    // Base parts are objects of their own: the effect that refers to one is not selected.
    EXPECT_THAT(document.objectsByClassName("Effect::Object"),
                UnorderedElementsAre(&document.objects.at(2), &document.objects.at(4)));
    EXPECT_THAT(document.objectsByClassName("effect::object"), IsEmpty());
    EXPECT_THAT(FlatObject().objectsByClassName("Effect::Object"), IsEmpty());
}

TEST(FlatObjectSelect, ByClassesIsTheUnion) {
    FlatObject document = documentOf({{"A", 1}, {"B", 2}, {"C", 3}, {"A", 4}});
    EXPECT_THAT(
        document.objectsByClassNames({"A", "C", "D"}),
        UnorderedElementsAre(&document.objects.at(1), &document.objects.at(3), &document.objects.at(4)));
    EXPECT_THAT(document.objectsByClassNames({}), IsEmpty());
}

TEST(FlatObjectSelect, ReadsTheCurrentObjects) {
    FlatObject document = documentOf({{"A", 1}, {"A", 2}});
    document.objects.at(1)["@meta"]["class_name"] = "B";
    document.objects.erase(2);
    document.objects[3] = object("A", 3);
    EXPECT_THAT(document.objectsByClassName("A"), UnorderedElementsAre(&document.objects.at(3)));
    EXPECT_EQ(document.firstObjectByClassName("B"), &document.objects.at(1));
}

TEST(FlatObjectSelect, ObjectsWithoutAClassAreSkipped) {
    FlatObject document;
    document.objects[1] = json::array({1, 2});
    document.objects[2] = nullptr;
    document.objects[3] = {{"@meta", "A"}};
    document.objects[4] = {{"@meta", {{"class_name", 7}, {"object_id", 4}}}};
    document.objects[5] = {{"class_name", "A"}};
    EXPECT_THAT(document.objectsByClassName("A"), IsEmpty());
    EXPECT_THAT(document.objectsByClassName(""), IsEmpty());
}

TEST(FlatObjectSelect, ClassWithAnEmptyNameIsAClass) {
    FlatObject document = documentOf({{"", 1}, {"A", 2}});
    EXPECT_EQ(getClassName(document.objects.at(1)), "");
    EXPECT_EQ(document.firstObjectByClassName(""), &document.objects.at(1));
    EXPECT_THAT(document.objectsByClassNames({""}), UnorderedElementsAre(&document.objects.at(1)));
}

TEST(FlatObjectSelect, InAscendingIdForSteps) {
    FlatObject document = documentOf({{"A", 9}, {"B", 2}, {"A", 3}, {"A", greatestId}});
    std::vector<Id> ids;
    for (const auto& selected : Archive::Internal::selectObjects(document, "A")) {
        EXPECT_EQ(selected.object, &document.objects.at(selected.id));
        ids.push_back(selected.id);
    }
    EXPECT_THAT(ids, ElementsAre(3, 9, greatestId));
}

// Reading what a value is.

TEST(FlatObjectIds, OfAClassObject) {
    EXPECT_EQ(getObjectId(object("A", 5)), 5U);
    EXPECT_EQ(getObjectId(json{{"@meta", {{"object_id", 5}}}}), 5U); // signed, and without a class name
    EXPECT_EQ(getObjectId(object("A", 0)), 0U);
    EXPECT_EQ(getObjectId(object("A", greatestId)), greatestId);
    EXPECT_EQ(getObjectId(json{{"@meta_reference", 5}}), std::nullopt);
    EXPECT_EQ(getObjectId(json{{"object_id", 5}}), std::nullopt);
    EXPECT_EQ(getObjectId(json{{"@meta", 5}}), std::nullopt);
    EXPECT_EQ(getObjectId(json{{"@meta", json::array({"object_id", 5})}}), std::nullopt);
    EXPECT_EQ(getObjectId(json{{"@meta", json::object()}}), std::nullopt);
}

TEST(FlatObjectIds, OfAReference) {
    EXPECT_EQ(getReferenceObjectId(json{{"@meta_reference", 5}}), 5U);
    EXPECT_EQ(getReferenceObjectId(json{{"@meta_reference", greatestId}}), greatestId);
    EXPECT_EQ(getReferenceObjectId(object("A", 5)), std::nullopt);
    EXPECT_EQ(getReferenceObjectId(json{{"@meta_reference", nullptr}}), std::nullopt);
    EXPECT_EQ(getReferenceObjectId(json{{"@meta_reference", {{"@meta_reference", 5}}}}), std::nullopt);
}

TEST(FlatObjectIds, NeedAnIntegerThatIsNotNegative) {
    for (const json& bad : {json(-1), json(std::numeric_limits<long long>::min()), json(5.0), json("5"),
                            json(true), json(nullptr), json::array({5}), json::object()}) {
        EXPECT_EQ(getObjectId(json{{"@meta", {{"class_name", "A"}, {"object_id", bad}}}}), std::nullopt)
            << bad;
        EXPECT_EQ(getReferenceObjectId(json{{"@meta_reference", bad}}), std::nullopt) << bad;
        EXPECT_EQ(getAnyObjectId(json{{"@meta_reference", bad}}), std::nullopt) << bad;
    }
    // A number beyond 64 bits is read as a floating one.
    EXPECT_EQ(getReferenceObjectId(json::parse("{\"@meta_reference\": 18446744073709551616}")), std::nullopt);
    EXPECT_EQ(getReferenceObjectId(json::parse("{\"@meta_reference\": 18446744073709551615}")), greatestId);
}

TEST(FlatObjectIds, OfEither) {
    EXPECT_EQ(getAnyObjectId(object("A", 5)), 5U);
    EXPECT_EQ(getAnyObjectId(json{{"@meta_reference", 6}}), 6U);
    json both = object("A", 5);
    both["@meta_reference"] = 6;
    EXPECT_EQ(getAnyObjectId(both), 5U);
    EXPECT_EQ(getReferenceObjectId(both), 6U);
    both["@meta"]["object_id"] = -5;
    EXPECT_EQ(getAnyObjectId(both), 6U);
    both["@meta"].erase("object_id");
    EXPECT_EQ(getAnyObjectId(both), 6U);
}

TEST(FlatObjectIds, OfAnythingElseAreEmpty) {
    for (const json& value :
         {json(), json(5), json("@meta"), json(true), json(1.5), json::array({object("A", 5)}),
          json::object(), json{{"field", object("A", 5)}}}) {
        EXPECT_EQ(getObjectId(value), std::nullopt) << value;
        EXPECT_EQ(getReferenceObjectId(value), std::nullopt) << value;
        EXPECT_EQ(getAnyObjectId(value), std::nullopt) << value;
        EXPECT_EQ(getClassName(value), std::nullopt) << value;
    }
}

TEST(FlatObjectIds, AreReadWithoutCreatingAKey) {
    json value = {{"field", 1}};
    getObjectId(value);
    getReferenceObjectId(value);
    getAnyObjectId(value);
    getClassName(value);
    EXPECT_EQ(value.dump(), "{\"field\":1}");
}

TEST(FlatObjectIds, KeysThatSortBeforeMetaDoNotHideIt) {
    json value = object("A", 5);
    value["!"] = 1;
    value["1"] = 2;
    value["@a"] = 3;
    EXPECT_EQ(getObjectId(value), 5U);
    EXPECT_EQ(getClassName(value), "A");
    json reference = {{"@meta_reference", 6}, {"!", 1}};
    EXPECT_EQ(getReferenceObjectId(reference), 6U);
}

TEST(FlatObjectClassName, IsAString) {
    EXPECT_EQ(getClassName(object("Effect::Lut", 1)), "Effect::Lut");
    EXPECT_EQ(getClassName(json{{"@meta", {{"class_name", "A"}}}}), "A"); // without an id
    for (const json& bad : {json(5), json(nullptr), json::array({"A"}), json{{"class_name", "A"}}})
        EXPECT_EQ(getClassName(json{{"@meta", {{"class_name", bad}}}}), std::nullopt) << bad;
    EXPECT_EQ(getClassName(json{{"class_name", "A"}}), std::nullopt);
    EXPECT_EQ(getClassName(json{{"@meta", "A"}}), std::nullopt);
}

TEST(FlatObjectText, IsStoredInUtf8) {
    const json plain = QString("intro");
    EXPECT_EQ(plain, json("intro"));
    const json film = QString::fromUtf8("\xc3\xa4 \xf0\x9f\x8e\xac");
    EXPECT_EQ(film.get<std::string>(), "\xc3\xa4 \xf0\x9f\x8e\xac");
    const json empty = QString();
    EXPECT_TRUE(empty.is_string());
    EXPECT_EQ(empty.get<std::string>(), "");
    json target = 5;
    target = QString("text");
    EXPECT_EQ(target, json("text"));
    const json inside = {{"a", QString("b")}};
    EXPECT_EQ(inside.dump(), "{\"a\":\"b\"}");
}

TEST(FlatObjectText, WithHalfACharacterIsStillWritten) {
    const json broken = QString("a") + QChar(0xD83C);
    EXPECT_NO_THROW(EXPECT_NE(broken.dump(), ""));
}

// Helpers of the steps.

TEST(FlatObjects, MissingIdHasOneText) {
    FlatObject document = documentOf({{"A", 5}});
    EXPECT_EQ(&Archive::Internal::objectAt(document, 5), &document.objects.at(5));
    EXPECT_THAT([&] { Archive::Internal::objectAt(document, 6); },
                ThrowsMessage<std::out_of_range>(StrEq("invalid map<K, T> key")));
    EXPECT_EQ(document.objects.size(), 1U);
}

TEST(FlatObjects, MemberIsReadWithoutCreatingAKey) {
    const json value = {{"a", 1}, {"n", nullptr}};
    EXPECT_EQ(Archive::Internal::memberOf(value, "a"), json(1));
    EXPECT_TRUE(Archive::Internal::memberOf(value, "n").is_null());
    EXPECT_TRUE(Archive::Internal::memberOf(value, "b").is_null());
    EXPECT_TRUE(Archive::Internal::memberOf(json::array({1}), "a").is_null());
    EXPECT_TRUE(Archive::Internal::memberOf(json(), "a").is_null());
    EXPECT_EQ(value.size(), 2U);
}

// Functions on the flat document.

TEST(CloneObject, HasANewIdAndTheRestOfTheSource) {
    FlatObject document = documentOf({{"Timeline::Track", 3}, {"Timeline::Clip", 8}});
    json& source = document.objects.at(3);
    source["@meta"]["extra"] = "kept";
    source["clip"] = document.createRef(Id{8});
    source["list"] = {1, 2};
    const json before = source;
    json* clone = Archive::cloneObject(document, &source);
    EXPECT_EQ(clone, &document.objects.at(9));
    json expected = before;
    expected["@meta"]["object_id"] = 9;
    EXPECT_EQ(*clone, expected); // shallow: both refer to one clip
    EXPECT_TRUE((*clone)["@meta"]["object_id"].is_number_unsigned());
    EXPECT_EQ(document.objects.at(3), before);
    EXPECT_EQ(document.objects.size(), 3U);
}

TEST(CloneObject, ById) {
    FlatObject document = documentOf({{"A", 3}});
    json* clone = Archive::cloneObject(document, 3);
    EXPECT_EQ(*clone, object("A", 4));
    EXPECT_EQ(clone, &document.objects.at(4));
}

TEST(CloneObject, OfAnUnknownIdCreatesNothing) {
    FlatObject document = documentOf({{"A", 3}});
    EXPECT_EQ(Archive::cloneObject(document, 4), nullptr);
    EXPECT_EQ(Archive::cloneObject(document, greatestId), nullptr);
    EXPECT_EQ(document.objects.size(), 1U);
}

TEST(CloneObject, WithoutAClassNameThrowsAndCreatesNothing) {
    const auto throwsText =
        ThrowsMessage<std::invalid_argument>(StrEq("Have not class_name tag in json object"));
    for (const json& bad : {json{{"field", 1}}, json(), json::array(), json{{"@meta", {{"object_id", 1}}}},
                            json{{"@meta", {{"class_name", 7}, {"object_id", 1}}}}}) {
        FlatObject document;
        document.objects[1] = bad;
        EXPECT_THAT([&] { Archive::cloneObject(document, &document.objects[1]); }, throwsText) << bad;
        EXPECT_THAT([&] { Archive::cloneObject(document, 1); }, throwsText) << bad;
        EXPECT_EQ(document.objects.size(), 1U);
    }
}

TEST(CloneObject, OfAClassWithAnEmptyName) {
    FlatObject document = documentOf({{"", 3}});
    EXPECT_EQ(*Archive::cloneObject(document, 3), object("", 4));
}

TEST(CloneObject, OfAnObjectOutsideTheDocument) {
    FlatObject document = documentOf({{"A", 3}});
    json outside = object("B", 90);
    outside["field"] = 1;
    json* clone = Archive::cloneObject(document, &outside);
    EXPECT_EQ((*clone)["@meta"]["object_id"], 4);
    EXPECT_EQ((*clone)["field"], 1);
    EXPECT_EQ(outside["@meta"]["object_id"], 90);
}

TEST(CreateRef, OfATransformCreatesAnObject) {
    FlatObject document = documentOf({{"A", 3}});
    const Stored::V14::Transform transform{1, 0.5, -0.25, 2, 3, 4, 5, 6, 7};
    EXPECT_EQ(Archive::createRef(document, transform), json({{"@meta_reference", 4}}));
    EXPECT_EQ(document.objects.at(4).dump(),
              "{\"@meta\":{\"class_name\":\"Types::Transform\",\"object_id\":4},"
              "\"m11\":1.0,\"m12\":0.5,\"m13\":-0.25,\"m21\":2.0,\"m22\":3.0,\"m23\":4.0,"
              "\"m31\":5.0,\"m32\":6.0,\"m33\":7.0}");
}

TEST(RenameChild, MovesTheValue) {
    json value = {{"old", {1, 2}}, {"other", 3}};
    Archive::renameChild(value, "old", "new");
    EXPECT_EQ(value.dump(), "{\"new\":[1,2],\"other\":3}");
}

TEST(RenameChild, OfAMissingKeyChangesNothing) {
    json value = {{"other", 3}};
    Archive::renameChild(value, "old", "new");
    Archive::renameChild(value, "old", "other");
    EXPECT_EQ(value.dump(), "{\"other\":3}");
}

TEST(RenameChild, OverwritesAnExistingKey) {
    json value = {{"old", 1}, {"new", {{"deep", 2}}}};
    Archive::renameChild(value, "old", "new");
    EXPECT_EQ(value.dump(), "{\"new\":1}");
}

TEST(RenameChild, ToTheSameNameLosesTheValue) {
    json value = {{"old", 1}, {"other", 3}};
    Archive::renameChild(value, "old", "old");
    EXPECT_EQ(value.dump(), "{\"other\":3}");
}

TEST(RenameChild, OfANullValueIsARenameToo) {
    json value = {{"old", nullptr}};
    Archive::renameChild(value, "old", "new");
    EXPECT_EQ(value.dump(), "{\"new\":null}");
}

TEST(RenameChild, AcceptsNamesThatAreParts) {
    json value = {{"fadeInDuraion", 1}};
    const std::string_view text = "fadeInDuraion, fadeInDuration";
    Archive::renameChild(value, text.substr(0, 13), text.substr(15));
    EXPECT_EQ(value.dump(), "{\"fadeInDuration\":1}");
}

TEST(RenameChild, OfWhatIsNoObjectDoesNothing) {
    for (json value : {json::array({"old"}), json(), json("old"), json(5), json(true)}) {
        const json before = value;
        Archive::renameChild(value, "old", "new");
        EXPECT_EQ(value, before);
    }
}

} // namespace
