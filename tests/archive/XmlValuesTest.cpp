// Reading and writing single values. The texts of doubles were computed without the library: base64 of the
// eight bytes, the most significant one first.

#include "Archive/Xml.h"
#include "support/Elements.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using Tests::rootOf;
using Tests::textOf;

constexpr long long maxLong = std::numeric_limits<long long>::max();
constexpr long long minLong = std::numeric_limits<long long>::min();
constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(XmlValues, TypeOf) {
    EXPECT_EQ(Archive::typeOf(rootOf("<a type='Timeline::Clip'/>")), QString("Timeline::Clip"));
    EXPECT_EQ(Archive::typeOf(rootOf("<a/>")), QString());
    EXPECT_EQ(Archive::typeOf(QDomElement()), QString());
}

TEST(XmlValues, ObjectIdOf) {
    const auto idOfText = [](const char* id) {
        return Archive::objectIdOf(rootOf((std::string("<a objectId='") + id + "'/>").c_str()));
    };
    EXPECT_EQ(idOfText("7"), 7U);
    EXPECT_EQ(idOfText("007"), 7U);
    EXPECT_EQ(idOfText("18446744073709551615"), 18446744073709551615U);
    EXPECT_EQ(idOfText("18446744073709551616"), 0U);
    EXPECT_EQ(idOfText("-1"), 0U);
    EXPECT_EQ(idOfText("abc"), 0U);
    EXPECT_EQ(idOfText("7a"), 0U);
    EXPECT_EQ(idOfText(""), 0U);
    EXPECT_EQ(Archive::objectIdOf(rootOf("<a/>")), 0U);
    EXPECT_EQ(Archive::objectIdOf(QDomElement()), 0U);
}

TEST(XmlValues, ValueOfReadsTheFirstChild) {
    const QDomElement e = rootOf("<a><in><b value='deep'/></in><b value='1'/><b value='2'/><c/></a>");
    EXPECT_EQ(Archive::valueOf(e, "b"), QString("1"));
    EXPECT_EQ(Archive::valueOf(e, "c"), QString());
    EXPECT_EQ(Archive::valueOf(e, "d"), QString());
    EXPECT_EQ(Archive::valueOf(QDomElement(), "b"), QString());
}

TEST(XmlValues, RefOf) {
    const QDomElement e = rootOf("<a><b ref='empty' value='x'/><b ref='other'/><c value='y'/></a>");
    EXPECT_EQ(Archive::refOf(e, "b"), QString("empty"));
    EXPECT_EQ(Archive::refOf(e, "c"), QString());
    EXPECT_EQ(Archive::refOf(e, "d"), QString());
}

TEST(XmlValues, SetValueOf) {
    const QDomElement e = rootOf("<a><b/><b value='2'/><in><c value='3'/></in></a>");
    Archive::setValueOf(e, "b", "new");
    Archive::setValueOf(e, "c", "new");
    Archive::setValueOf(QDomElement(), "b", "new");
    EXPECT_EQ(textOf(e), "a [b value=new, b value=2, in [c value=3]]");
}

TEST(XmlValues, ExtractInteger) {
    EXPECT_EQ(Archive::extractValue(QString("42"), 5LL), 42);
    EXPECT_EQ(Archive::extractValue(QString("-42"), 5), -42);
    EXPECT_EQ(Archive::extractValue(QString(""), 5LL), 5);
    EXPECT_EQ(Archive::extractValue(QString(), 5), 5);
    EXPECT_EQ(Archive::extractValue(QString("4.5"), 5LL), 5);
    EXPECT_EQ(Archive::extractValue(QString("0x10"), 5LL), 5);
    EXPECT_EQ(Archive::extractValue(QString("9223372036854775807"), 5LL), maxLong);
    EXPECT_EQ(Archive::extractValue(QString("-9223372036854775808"), 5LL), minLong);
    EXPECT_EQ(Archive::extractValue(QString("9223372036854775808"), 5LL), 5);
}

TEST(XmlValues, ExtractMTime) {
    EXPECT_EQ(Archive::extractValue(QString("1500"), MTime(7)), MTime(1500));
    EXPECT_EQ(Archive::extractValue(QString("soon"), MTime(7)), MTime(7));
    EXPECT_EQ(Archive::extractValue(QString(), MTime(7)), MTime(7));
}

TEST(XmlValues, ExtractDouble) {
    EXPECT_EQ(Archive::extractValue(QString("P+AAAAAAAAA="), 9.0), 0.5);
    EXPECT_EQ(Archive::extractValue(QString("v9AAAAAAAAA="), 9.0), -0.25);
    EXPECT_TRUE(std::signbit(Archive::extractValue(QString("gAAAAAAAAAA="), 9.0))); // -0.0
    EXPECT_TRUE(std::isnan(Archive::extractValue(QString("f/gAAAAAAAA="), 9.0)));
    // Infinities give the fallback.
    EXPECT_EQ(Archive::extractValue(QString("f/AAAAAAAAA="), 9.0), 9.0);
    EXPECT_EQ(Archive::extractValue(QString("//AAAAAAAAA="), 9.0), 9.0);
    // Too few bytes are 0.0, not the fallback; further bytes are not read.
    EXPECT_EQ(Archive::extractValue(QString(""), 9.0), 0.0);
    EXPECT_EQ(Archive::extractValue(QString("P+AAAAAAAA=="), 9.0), 0.0);
    EXPECT_EQ(Archive::extractValue(QString("P+AAAAAAAAD/////"), 9.0), 0.5);
}

TEST(XmlValues, ReadValueReadsTypeAndBinaryDataOnly) {
    EXPECT_EQ(Archive::readValue(rootOf("<x type='double' value='7' binaryData='P+AAAAAAAAA='/>"), 9.0), 0.5);
    EXPECT_EQ(Archive::readValue(rootOf("<x type='double' value='7'/>"), 9.0), 0.0);
    EXPECT_EQ(Archive::readValue(rootOf("<x type='double' binaryData='f/AAAAAAAAA='/>"), 9.0), 9.0);
    EXPECT_TRUE(std::isnan(Archive::readValue(rootOf("<x type='double' binaryData='f/gAAAAAAAA='/>"), 9.0)));
    EXPECT_EQ(Archive::readValue(rootOf("<x type='int32_t' value='7' binaryData='P+AAAAAAAAA='/>"), 9.0),
              9.0);
    EXPECT_EQ(Archive::readValue(rootOf("<x value='7' binaryData='P+AAAAAAAAA='/>"), 9.0), 9.0);
    EXPECT_EQ(Archive::readValue(QDomElement(), 9.0), 9.0);
}

TEST(XmlValues, SerializeValue) {
    EXPECT_EQ(Archive::serializeValue(0.5), QString("P+AAAAAAAAA="));
    EXPECT_EQ(Archive::serializeValue(0.0), QString("AAAAAAAAAAA="));
    EXPECT_EQ(Archive::serializeValue(-0.0), QString("gAAAAAAAAAA="));
    EXPECT_EQ(Archive::serializeValue(infinity), QString("AAAAAAAAAAA="));
    EXPECT_EQ(Archive::serializeValue(-infinity), QString("AAAAAAAAAAA="));
    EXPECT_EQ(Archive::serializeValue(std::numeric_limits<double>::quiet_NaN()), QString("f/gAAAAAAAA="));
    EXPECT_EQ(Archive::serializeValue(std::numeric_limits<double>::denorm_min()), QString("AAAAAAAAAAE="));
}

TEST(XmlValues, WriteValueRetypesTheElement) {
    QDomElement e = rootOf("<x type='int32_t' value='7' other='stays'/>");
    Archive::writeValue(e, 0.94);
    EXPECT_EQ(textOf(e), "x binaryData=P+4UeuFHrhQ= other=stays type=double value=0.94");
    Archive::writeValue(e, infinity);
    EXPECT_EQ(textOf(e), "x binaryData=AAAAAAAAAAA= other=stays type=double value=inf");
    Archive::writeValue(e, 1.0 / 3.0);
    EXPECT_EQ(textOf(e), "x binaryData=P9VVVVVVVVU= other=stays type=double value=0.333333");
    Archive::writeValue(e, 0.00001);
    EXPECT_EQ(textOf(e), "x binaryData=PuT4tYjjaPE= other=stays type=double value=1e-05");
    QDomElement none;
    Archive::writeValue(none, 1.0);
    EXPECT_TRUE(none.isNull());
}

} // namespace
