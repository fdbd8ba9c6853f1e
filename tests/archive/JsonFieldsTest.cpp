#include "Archive/Internal/JsonFields.h"

#include <gtest/gtest.h>

#include <limits>

using Archive::Internal::entriesOf;
using Archive::Internal::listOf;
using Archive::Internal::toInt32;
using Archive::Internal::toInteger;
using nlohmann::json;

namespace {

constexpr auto lowest32 = std::numeric_limits<int>::lowest();
constexpr auto lowest64 = std::numeric_limits<long long>::lowest();

TEST(JsonFields, IntegersAreReadIn64Bits) {
    EXPECT_EQ(toInteger(5), 5);
    EXPECT_EQ(toInteger(4294967300), 4294967300);
    EXPECT_EQ(toInteger(lowest64), lowest64);
    EXPECT_EQ(toInteger(std::numeric_limits<unsigned long long>::max()), -1);
}

TEST(JsonFields, FloatingNumbersLoseTheirFraction) {
    EXPECT_EQ(toInteger(4.9), 4);
    EXPECT_EQ(toInteger(-4.9), -4);
    EXPECT_EQ(toInt32(2147483647.9), 2147483647);
    EXPECT_EQ(toInt32(-2147483648.9), lowest32);
}

TEST(JsonFields, FloatingNumbersOutOfRangeReadAsTheLowest) {
    for (const double number :
         {1e300, -1e300, 9223372036854775808.0, std::numeric_limits<double>::quiet_NaN(),
          std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()}) {
        EXPECT_EQ(toInteger(number), lowest64) << number;
        EXPECT_EQ(toInt32(number), lowest32) << number;
    }
    EXPECT_EQ(toInt32(2147483648.0), lowest32);
    EXPECT_EQ(toInteger(-9223372036854775808.0), lowest64);
}

TEST(JsonFields, GreatIntegersWrapIn32Bits) {
    EXPECT_EQ(toInt32(4294967298), 2);
    EXPECT_EQ(toInt32(-4294967298), -2);
    EXPECT_EQ(toInt32(2147483648), lowest32);
}

TEST(JsonFields, BooleanIsANumberIn32BitsOnly) {
    EXPECT_EQ(toInt32(true), 1);
    EXPECT_EQ(toInt32(false), 0);
    EXPECT_THROW(toInteger(true), json::type_error);
}

TEST(JsonFields, AnythingElseIsATypeError) {
    for (const json& value : {json(), json("1"), json::array({1}), json::object()}) {
        for (const bool is32 : {false, true}) {
            try {
                is32 ? toInt32(value) : toInteger(value);
                ADD_FAILURE() << value;
            } catch (const json::type_error& error) {
                EXPECT_EQ(error.id, 302);
                EXPECT_NE(std::string(error.what()).find("type must be number, but is "), std::string::npos);
            }
        }
    }
}

TEST(JsonFields, LookingUpAListCreatesNoKey) {
    json object = {{"list", {1, 2}}, {"text", "no list"}};
    const json before = object;
    EXPECT_EQ(entriesOf(object, "list"), json::array_t({1, 2}));
    EXPECT_TRUE(entriesOf(object, "text").empty());
    EXPECT_TRUE(entriesOf(object, "missing").empty());
    EXPECT_TRUE(entriesOf(json(), "missing").empty());
    EXPECT_EQ(listOf(object, "list"), object["list"].get_ptr<json::array_t*>());
    EXPECT_EQ(listOf(object, "text"), nullptr);
    EXPECT_EQ(listOf(object, "missing"), nullptr);
    EXPECT_EQ(object, before);
}

} // namespace
