#include "Archive/Internal/JsonValues.h"

#include <gtest/gtest.h>

#include <limits>

using Archive::Internal::areEqual;
using Archive::Internal::copied;
using nlohmann::json;

namespace {

TEST(CopiedValue, HasTheWholeContent) {
    for (const char* text :
         {"null", "true", "-2", "18446744073709551615", "1.0", "\"text\"", "[]", "{}",
          R"({"a":[1,[2,[],{}],{"b":null,"c":{"d":[false,0.5]}}],"b":"","z":{"y":[[[3]]]}})"}) {
        const json value = json::parse(text);
        const json copy = copied(value);
        EXPECT_EQ(copy.dump(), text);
        EXPECT_EQ(copy.type(), value.type());
    }
}

TEST(CopiedValue, SharesNothing) {
    json value = json::parse(R"({"a":[{"b":1}]})");
    const json copy = copied(value);
    value["a"][0]["b"] = 2;
    EXPECT_EQ(copy.dump(), R"({"a":[{"b":1}]})");
}

bool equal(const char* left, const char* right) {
    return areEqual(json::parse(left), json::parse(right));
}

TEST(EqualValues, AreEqualInEveryPart) {
    EXPECT_TRUE(equal(R"({"a":[1,{"b":[]}],"c":null})", R"({"c":null,"a":[1,{"b":[]}]})"));
    EXPECT_TRUE(equal("[1, 2]", "[1.0, 2]"));
    EXPECT_TRUE(equal("null", "null"));
    EXPECT_FALSE(equal("[1, 2]", "[2, 1]"));
    EXPECT_FALSE(equal("[1, 2]", "[1]"));
    EXPECT_FALSE(equal("[1]", "[1, 2]"));
    EXPECT_FALSE(equal("[]", "{}"));
    EXPECT_FALSE(equal("[]", "null"));
    EXPECT_FALSE(equal(R"({"a":1})", R"({"b":1})"));
    EXPECT_FALSE(equal(R"({"a":1})", R"({"a":1,"b":1})"));
    EXPECT_FALSE(equal(R"({"a":{"b":[0,{"c":1}]}})", R"({"a":{"b":[0,{"c":true}]}})"));
}

TEST(EqualValues, NotANumberEqualsNothing) {
    const json value = {std::numeric_limits<double>::quiet_NaN()};
    EXPECT_FALSE(areEqual(value, value));
}

} // namespace
