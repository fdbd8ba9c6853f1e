// Creating elements of an archive. The texts of doubles were computed without the library: base64 of the
// eight bytes, the most significant one first.

#include "Archive/Xml.h"
#include "support/Elements.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using Tests::textOf;
using Tests::Texts;

constexpr long long maxLong = std::numeric_limits<long long>::max();
constexpr long long minLong = std::numeric_limits<long long>::min();
constexpr double infinity = std::numeric_limits<double>::infinity();

class XmlCreate : public testing::Test {
protected:
    QDomDocument doc;
};

TEST_F(XmlCreate, Array) {
    EXPECT_EQ(textOf(Archive::createArray(doc, "labels", 3)), "labels size=3 type=Array");
    EXPECT_EQ(textOf(Archive::createArray(doc, "labels", maxLong)),
              "labels size=9223372036854775807 type=Array");
}

TEST_F(XmlCreate, ArrayItem) {
    EXPECT_EQ(textOf(Archive::createArrayItem(doc, 7)), "Item index=7 type=Item");
    EXPECT_EQ(textOf(Archive::createArrayItem(doc, -1)), "Item index=-1 type=Item");
}

TEST_F(XmlCreate, Bool) {
    EXPECT_EQ(textOf(Archive::createBool(doc, "on", true)), "on type=bool value=1");
    EXPECT_EQ(textOf(Archive::createBool(doc, "on", false)), "on type=bool value=0");
}

TEST_F(XmlCreate, Integers) {
    EXPECT_EQ(textOf(Archive::createInt32(doc, "n", std::numeric_limits<int>::min())),
              "n type=int32_t value=-2147483648");
    EXPECT_EQ(textOf(Archive::createUInt32(doc, "n", std::numeric_limits<unsigned int>::max())),
              "n type=uint32_t value=4294967295");
    EXPECT_EQ(textOf(Archive::createInt64(doc, "n", minLong)), "n type=int64_t value=-9223372036854775808");
    EXPECT_EQ(textOf(Archive::createUInt64(doc, "n", std::numeric_limits<unsigned long long>::max())),
              "n type=uint64_t value=18446744073709551615");
}

TEST_F(XmlCreate, Double) {
    EXPECT_EQ(textOf(Archive::createDouble(doc, "x", 0.5)),
              "x binaryData=P+AAAAAAAAA= type=double value=0.5");
    EXPECT_EQ(textOf(Archive::createDouble(doc, "x", 1234567.0)),
              "x binaryData=QTLWhwAAAAA= type=double value=1.23457e+06");
}

TEST_F(XmlCreate, MTimeIsItsRawCount) {
    EXPECT_EQ(textOf(Archive::createMTime(doc, "t", MTime(-1))), "t type=int64_t value=-1");
    EXPECT_EQ(textOf(Archive::createMTime(doc, "t", MTime())), "t type=int64_t value=0");
}

TEST_F(XmlCreate, Texts) {
    EXPECT_EQ(textOf(Archive::createString(doc, "s", "intro")), "s type=String value=intro");
    EXPECT_EQ(textOf(Archive::createString(doc, "s", QString())), "s type=String value=");
    EXPECT_EQ(textOf(Archive::createImageRef(doc, "image", "empty")), "image ref=empty type=ImageRef");
    EXPECT_EQ(textOf(Archive::createTypeValue(doc, "p", "PointF", "1.5;2")), "p type=PointF value=1.5;2");
}

TEST_F(XmlCreate, ObjectsAndReferences) {
    EXPECT_EQ(textOf(Archive::createObjectRef(doc, "clip", 9)), "clip type=ObjectRef value=9");
    EXPECT_EQ(textOf(Archive::createObject(doc, "RootObject", "Timeline::Clip", maxLong)),
              "RootObject objectId=9223372036854775807 type=Timeline::Clip");
}

TEST_F(XmlCreate, ResourceId) {
    EXPECT_EQ(textOf(Archive::createResourceId(doc, "auxResource", "lut",
                                               static_cast<Stored::V57::ResourceType>(0))),
              "auxResource size=2 type=Array ["
              "Item index=1 type=Item [Data type=String value=lut], "
              "Item index=2 type=Item [Data type=int32_t value=0]]");
    EXPECT_EQ(textOf(Archive::createResourceId(doc, "r", "", static_cast<Stored::V57::ResourceType>(4))),
              "r size=2 type=Array ["
              "Item index=1 type=Item [Data type=String value=], "
              "Item index=2 type=Item [Data type=int32_t value=4]]");
}

TEST_F(XmlCreate, TransformHasFourDecimalsByRows) {
    Stored::V14::Transform transform{};
    transform.m11 = 1;
    transform.m12 = 0.5;
    transform.m13 = -0.25;
    transform.m21 = 1.0 / 3.0;
    transform.m22 = 1234567;
    transform.m23 = infinity;
    transform.m31 = 1.5;
    transform.m32 = 0.00001;
    transform.m33 = 2;
    EXPECT_EQ(textOf(Archive::value2element<Stored::V14::Transform>(doc, "transform", transform, 12)),
              "transform objectId=12 type=Types::Transform ["
              "m11 binaryData=P/AAAAAAAAA= type=double value=1.0000, "
              "m12 binaryData=P+AAAAAAAAA= type=double value=0.5000, "
              "m13 binaryData=v9AAAAAAAAA= type=double value=-0.2500, "
              "m21 binaryData=P9VVVVVVVVU= type=double value=0.3333, "
              "m22 binaryData=QTLWhwAAAAA= type=double value=1234567.0000, "
              "m23 binaryData=AAAAAAAAAAA= type=double value=inf, "
              "m31 binaryData=P/gAAAAAAAA= type=double value=1.5000, "
              "m32 binaryData=PuT4tYjjaPE= type=double value=0.0000, "
              "m33 binaryData=QAAAAAAAAAA= type=double value=2.0000]");
}

TEST_F(XmlCreate, NothingIsInserted) {
    Archive::createArray(doc, "a", 0);
    Archive::createObject(doc, "o", "T", 1);
    EXPECT_TRUE(doc.firstChild().isNull());
}

} // namespace
