// The toolkits at their limits: null elements, the limits of 64 bits, and the integer types of callers.

#include "Archive/Archive.h"
#include "MTime/MTime.h"
#include "support/QtMessages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDomDocument>

#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <type_traits>

namespace {

using nlohmann::json;
using Serialize::Json::FlatObject;

constexpr long long maxLong = std::numeric_limits<long long>::max();
constexpr long long minLong = std::numeric_limits<long long>::min();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

QDomElement elementIn(QDomDocument& doc, const QByteArray& text) {
    EXPECT_TRUE(doc.setContent(text)) << text.toStdString();
    return doc.documentElement();
}

// Callers may use any integer type: int64_t is not long long everywhere.
static_assert(std::is_same_v<decltype(Archive::extractValue(QString(), 5)), long long>);
static_assert(std::is_same_v<decltype(Archive::extractValue(QString(), 5L)), long long>);
static_assert(std::is_same_v<decltype(Archive::extractValue(QString(), 5LL)), long long>);
static_assert(std::is_same_v<decltype(Archive::extractValue(QString(), 5U)), long long>);
static_assert(std::is_same_v<decltype(Archive::extractValue(QString(), std::int64_t{5})), long long>);
static_assert(std::is_same_v<decltype(Archive::extractValue(QString(), qint64{5})), long long>);
static_assert(std::is_same_v<decltype(Archive::extractValue(QString(), 5.0)), double>);
static_assert(std::is_same_v<decltype(Archive::extractValue(QString(), 5.0F)), double>);
static_assert(std::is_same_v<decltype(Archive::extractValue(QString(), MTime())), MTime>);

TEST(ToolkitLimits, ExtractValueAcceptsAnyIntegerAsFallback) {
    const MTime time(minLong);
    EXPECT_EQ(Archive::extractValue("", time.count()), minLong);
    EXPECT_EQ(Archive::extractValue("7", time.count()), 7);
    EXPECT_EQ(Archive::extractValue("", 5L), 5);
    EXPECT_EQ(Archive::extractValue("x", short{-5}), -5);
    EXPECT_EQ(Archive::extractValue("", MTime(maxLong)), MTime(maxLong));
    EXPECT_EQ(Archive::extractValue("-9223372036854775808", MTime()), MTime(minLong));
    EXPECT_EQ(Archive::extractValue("9223372036854775808", MTime(3)), MTime(3));
}

TEST(ToolkitLimits, NothingIsPrintedForNullElements) {
    const Tests::QtMessages messages;
    QDomDocument doc;
    QDomElement none;
    long long maxId = 10;
    EXPECT_EQ(Archive::refOf(none, "a"), QString());
    Archive::setValueOf(none, "a", "b");
    Archive::writeValue(none, 1.0);
    Archive::removeFirstChild(none, "a");
    Archive::iterateArray(none, [](QDomElement&) { ADD_FAILURE(); });
    Archive::forEachChild(none, "a", [](QDomElement&) { ADD_FAILURE(); });
    Archive::forEachChild(doc, "a", [](QDomElement&) { ADD_FAILURE(); });
    EXPECT_TRUE(Archive::findRootBaseOfObject(none).isNull());
    Archive::appendArrayElement(doc, none);
    Archive::appendArrayElement(doc, none, "list");
    Archive::prependArrayElement(doc, none);
    Archive::prependArrayElement(doc, none, "list");
    EXPECT_FALSE(Archive::removePredeclare(none, 1));
    EXPECT_EQ(Archive::addPredeclaration(none, doc, "T", 0, maxId, -1, {}), 11);
    EXPECT_EQ(messages.count(), 0);
    EXPECT_TRUE(none.isNull());
    EXPECT_TRUE(doc.firstChild().isNull());
}

TEST(ToolkitLimits, AnItemBelowAMissingParentCountsFromOne) {
    QDomDocument doc;
    QDomElement none;
    EXPECT_EQ(Archive::appendArrayElement(doc, none, "list").attribute("index"), QString("1"));
    EXPECT_EQ(Archive::prependArrayElement(doc, none, "list").attribute("index"), QString("1"));
}

TEST(ToolkitLimits, PrependedIndexesAndSizesWrap) {
    QDomDocument doc;
    QDomElement array = elementIn(doc, "<a size='9223372036854775807'><Item index='9223372036854775807'/>"
                                       "<Item index='9223372036854775808'/></a>");
    const QDomElement item = Archive::prependArrayElement(doc, array);
    EXPECT_EQ(array.attribute("size"), QString("-9223372036854775808"));
    EXPECT_EQ(item.attribute("index"), QString("1"));
    const QDomElement second = item.nextSiblingElement();
    EXPECT_EQ(second.attribute("index"), QString("-9223372036854775808"));
    EXPECT_EQ(second.nextSiblingElement().attribute("index"), QString("1")); // no 64-bit number: 0
}

TEST(ToolkitLimits, ReferencesAndRecordsHoldAnyId) {
    QDomDocument doc;
    QDomElement array = elementIn(doc, "<a size='0'/>");
    long long maxId = minLong;
    EXPECT_EQ(Archive::addPredeclaration(array, doc, "T", minLong, maxId, maxLong, {minLong, maxLong, 0}),
              maxLong);
    EXPECT_EQ(maxId, minLong + 1);
    const QDomElement data = array.firstChildElement("Item").firstChildElement("Data");
    EXPECT_EQ(data.attribute("objectId"), QString("-9223372036854775807"));
    EXPECT_EQ(Archive::valueOf(data, "poid"), QString("-9223372036854775808"));
    EXPECT_EQ(Archive::valueOf(data, "oid"), QString("9223372036854775807"));
    std::vector<QString> refs;
    Archive::iterateArray(data.firstChildElement("refs"),
                          [&](QDomElement& ref) { refs.push_back(ref.attribute("value")); });
    EXPECT_EQ(refs, (std::vector<QString>{"-9223372036854775808", "9223372036854775807", "0"}));
    EXPECT_FALSE(Archive::removePredeclare(array, minLong));
    EXPECT_TRUE(Archive::removePredeclare(array, maxLong));
    EXPECT_TRUE(array.firstChildElement().isNull());
}

TEST(ToolkitLimits, ANewIdFromANegativeCounterIsNotCorrected) {
    QDomDocument doc;
    QDomElement array = elementIn(doc, "<a/>");
    long long maxId = -5;
    EXPECT_EQ(Archive::addPredeclaration(array, doc, "T", 0, maxId, minLong, {}), -4);
    EXPECT_EQ(maxId, -3);
}

TEST(ToolkitLimits, RecordsOfABadIdAreThoseOfZero) {
    QDomDocument doc;
    QDomElement array =
        elementIn(doc, "<a size='3'><Item><Data><oid value='9223372036854775808'/></Data></Item>"
                       "<Item><Data><oid value='1.0'/></Data></Item><Item><Data/></Item></a>");
    EXPECT_FALSE(Archive::removePredeclare(array, 1));
    EXPECT_TRUE(Archive::removePredeclare(array, 0));
    EXPECT_EQ(array.attribute("size"), QString("0"));
    EXPECT_TRUE(array.firstChildElement().isNull());
}

TEST(ToolkitLimits, NotANumberIsStoredUnchanged) {
    QDomDocument doc;
    const QDomElement e = Archive::createDouble(doc, "x", nan);
    EXPECT_EQ(e.attribute("value"), QString("nan"));
    EXPECT_EQ(e.attribute("binaryData"), QString("f/gAAAAAAAA="));
    EXPECT_TRUE(std::isnan(Archive::readValue(e, 1.0)));
    const QDomElement negative = Archive::createDouble(doc, "x", -std::numeric_limits<double>::infinity());
    EXPECT_EQ(negative.attribute("value"), QString("-inf"));
    EXPECT_EQ(negative.attribute("binaryData"), QString("AAAAAAAAAAA="));
}

TEST(ToolkitLimits, DoublesAreRestoredToTheLastBit) {
    for (const double number : {0.1, -1.0 / 3.0, std::numeric_limits<double>::max(), 5e-324, -0.0,
                                std::nextafter(1.0, 2.0), 1e300, -123456789.987654321}) {
        const double back = Archive::extractValue(Archive::serializeValue(number), 9.0);
        EXPECT_EQ(back, number);
        EXPECT_EQ(std::signbit(back), std::signbit(number));
    }
}

TEST(ToolkitLimits, BinaryDataOfOtherLettersIsReadAsInBase64) {
    // White space and characters outside of base64 are skipped; the rest may be too short.
    EXPECT_EQ(Archive::extractValue(QString(" P+AA AAAA\nAAA= "), 9.0), 0.5);
    EXPECT_EQ(Archive::extractValue(QString("nonsense"), 9.0), 0.0);
    EXPECT_EQ(Archive::extractValue(QString("0.5"), 9.0), 0.0);
}

TEST(ToolkitLimits, CloneWhereNoIdIsLeftChangesNothing) {
    FlatObject document;
    constexpr auto greatest = std::numeric_limits<unsigned long long>::max();
    document.objects[greatest] = {{"@meta", {{"class_name", "A"}, {"object_id", greatest}}}, {"x", 1}};
    const json before = document.objects.at(greatest);
    EXPECT_THROW(Archive::cloneObject(document, greatest), std::logic_error);
    EXPECT_THROW(Archive::createRef(document, Stored::V14::Transform{}), std::logic_error);
    EXPECT_EQ(document.objects.size(), 1U);
    EXPECT_EQ(document.objects.at(greatest), before);
}

TEST(ToolkitLimits, CloneOfNoObjectThrowsAsWithoutAClass) {
    FlatObject document;
    EXPECT_THAT([&] { Archive::cloneObject(document, static_cast<json*>(nullptr)); },
                testing::ThrowsMessage<std::invalid_argument>(
                    testing::StrEq("Have not class_name tag in json object")));
}

TEST(ToolkitLimits, CloneSharesWhatItRefersTo) {
    FlatObject document;
    json* inner = document.createObject("Types::Range");
    json* outer = document.createObject("Effect::Object");
    (*outer)["range"] = document.createRef(inner);
    (*outer)["list"] = json::array({document.createRef(inner), nullptr});
    json* clone = Archive::cloneObject(document, outer);
    json* cloneOfClone = Archive::cloneObject(document, clone);
    EXPECT_EQ(document.objects.size(), 4U);
    EXPECT_EQ((*cloneOfClone)["range"], json({{"@meta_reference", 1}}));
    EXPECT_EQ(Serialize::Json::getObjectId(*cloneOfClone), 4U);
    // A change of one does not change the other.
    (*clone)["list"][1] = 5;
    EXPECT_TRUE((*outer)["list"][1].is_null());
}

TEST(ToolkitLimits, CloneReplacesAnIdThatIsNoNumber) {
    FlatObject document;
    document.objects[3] = {{"@meta", {{"class_name", "A"}, {"object_id", "three"}}}};
    const json* clone = Archive::cloneObject(document, 3);
    EXPECT_EQ((*clone)["@meta"]["object_id"], 4U);
    EXPECT_EQ(document.objects.at(3)["@meta"]["object_id"], "three");
}

TEST(ToolkitLimits, RenameChildAcceptsAnyKey) {
    json object = {{"", 1}, {"b", json::array({2})}};
    Archive::renameChild(object, "", "a");
    EXPECT_EQ(object.dump(), R"({"a":1,"b":[2]})");
    Archive::renameChild(object, "b", "");
    EXPECT_EQ(object.dump(), R"({"":[2],"a":1})");
    Archive::renameChild(object, "", "");
    EXPECT_EQ(object.dump(), R"({"a":1})");
    Archive::renameChild(object, "missing", "a");
    Archive::renameChild(object, "missing", "missing");
    EXPECT_EQ(object.dump(), R"({"a":1})");
}

TEST(ToolkitLimits, TextsConvertToJsonImplicitly) {
    const QString text = QString::fromUtf8("\xc3\xa4");
    json object = json::object();
    object["a"] = text;
    object["b"] = json::array({text, QString()});
    const json literal = {{"c", text}, {"d", {QString("x"), QString("y")}}};
    EXPECT_EQ(object.dump(), "{\"a\":\"\xc3\xa4\",\"b\":[\"\xc3\xa4\",\"\"]}");
    EXPECT_EQ(literal["d"].size(), 2U);
    json target;
    Serialize::Json::to_json(target, text);
    EXPECT_EQ(target, object["a"]);
    const json withZero = QString::fromUtf8("a\0b", 3);
    EXPECT_EQ(withZero.get<std::string>(), std::string("a\0b", 3));
}

TEST(ToolkitLimits, AReferenceAcceptsAMutablePointerToo) {
    FlatObject document;
    json* object = document.createObject("A");
    const json* same = object;
    EXPECT_EQ(document.createRef(object), document.createRef(same));
    EXPECT_EQ(document.createRef(*object), document.createRef(Serialize::Json::getObjectId(*object).value()));
    EXPECT_TRUE(document.createRef(*object)["@meta_reference"].is_number_unsigned());
    // A reference is no class object: there is no reference to it.
    EXPECT_TRUE(document.createRef(document.createRef(object)).is_null());
}

} // namespace
