// JSON text is read by two parsers: a fast one, and the library's own for all that the fast one is not trusted with. Texts
// with an escaped character always go to the library's own.

#include "Reader/JsonText.h"

#include "Reader/Error.h"
#include "support/Compare.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

using nlohmann::json;
using Reader::Error;

namespace {

json read(const std::string& text) {
    return Reader::parseJson(QByteArray::fromStdString(text), QStringLiteral("film.json"));
}

/// The same by the library's own parser.
json readSlowly(const std::string& text) {
    return read("[" + text + R"(,"\u0041"])").at(0);
}

std::string errorOf(const std::string& text) {
    try {
        read(text);
    } catch (const Error& error) {
        return std::to_string(error.facts().byte.value_or(-1)) + ": " + error.facts().reason;
    }
    return "none";
}

class Same : public testing::TestWithParam<const char*> {};

TEST_P(Same, WithBothParsers) {
    const json value = read(GetParam());
    const json expected = readSlowly(GetParam());
    EXPECT_EQ(Tests::difference(expected, value), "");
    EXPECT_EQ(value.type(), expected.type());
    EXPECT_EQ(Reader::writeJson(value), Reader::writeJson(expected));
}

INSTANTIATE_TEST_SUITE_P(
    JsonText, Same,
    testing::Values("null", "true", "false", "[]", "{}", "\"\"", R"("a\"b\\c\/d\b\f\n\r\t")",
                    "\"\xC3\xA4\xF0\x9F\x8E\xAC\"", "\"\x7F\"", "\"\xEF\xBB\xBFtext\"", "0", "-0", "7", "-7",
                    "4294967296", "-2147483649", "9223372036854775807", "-9223372036854775808",
                    "9223372036854775808", "18446744073709551615", "18446744073709551616",
                    "-9223372036854775809", "123456789012345678901234567890", "0.0", "-0.0", "0.1", "1e3",
                    "1E+3", "1e-3", "1.5e300", "2.2250738585072011e-308", "5e-324", "1e-400", "0e99999",
                    "3.14159265358979323846264338327950288", "9007199254740993.0", "0.1e1",
                    "8.5070591730234616e+37", R"({"b":1,"a":2,"c":{"z":[1,2,[3,{}]],"y":null}})",
                    R"({"a":1,"b":2,"a":3})", R"({"a":{"x":1},"a":[]})", "{\"a\":1,\"a\":{\"b\":2},\"b\":3}",
                    " [ 1 , 2 ]\n\t\r", R"({"":{"":""}})"));

TEST(JsonText, ReadsTypesOfNumbers) {
    EXPECT_TRUE(read("0").is_number_unsigned());
    EXPECT_TRUE(read("18446744073709551615").is_number_unsigned());
    EXPECT_EQ(read("-7").type(), json::value_t::number_integer);
    EXPECT_EQ(read("-0").type(), json::value_t::number_integer);
    EXPECT_TRUE(read("1.0").is_number_float());
    EXPECT_TRUE(std::signbit(read("-0.0").get<double>()));
    EXPECT_EQ(read("0.1").get<double>(), 0.1);
    EXPECT_TRUE(read("18446744073709551616").is_binary()); // its digits are kept
}

TEST(JsonText, AMemberThatComesTwiceHasItsLastValue) {
    EXPECT_EQ(read(R"({"a":1,"b":2,"a":3})"), json({{"a", 3}, {"b", 2}}));
    EXPECT_EQ(read(R"({"a":{"x":1},"a":[]})"), json({{"a", json::array()}}));
}

// The second text of each line is the reason of the library's own parser.
TEST(JsonText, DescribesErrorsOfTextsThatTheFastParserRefuses) {
    EXPECT_NE(errorOf("[1,2").find("4: "), std::string::npos);
    EXPECT_EQ(errorOf("[1e999]").substr(0, 3), "6: ");
    EXPECT_NE(errorOf("[1e999]").find("number overflow"), std::string::npos);
    EXPECT_NE(errorOf("[01]").find("unexpected number literal"), std::string::npos);
    EXPECT_NE(errorOf("[1] 2").find("expected end of input"), std::string::npos);
    EXPECT_NE(errorOf("[NaN]").find("invalid literal"), std::string::npos);
    EXPECT_NE(errorOf("// a\n[]").find("invalid literal"), std::string::npos);
    EXPECT_NE(errorOf("[1,]").find("unexpected ']'"), std::string::npos);
    EXPECT_NE(errorOf("[\"\t\"]").find("control character"), std::string::npos);
    EXPECT_NE(errorOf("[\"\\x\"]").find("forbidden character after backslash"), std::string::npos);
    EXPECT_NE(errorOf("[\"\xC3\"]").find("ill-formed UTF-8"), std::string::npos);
    EXPECT_NE(errorOf("[\"\xC0\xAF\"]").find("ill-formed UTF-8"), std::string::npos);     // overlong
    EXPECT_NE(errorOf("[\"\xED\xB0\x80\"]").find("ill-formed UTF-8"), std::string::npos); // a surrogate
    EXPECT_NE(errorOf("[\"\xF4\x90\x80\x80\"]").find("ill-formed UTF-8"),
              std::string::npos); // above U+10FFFF
}

TEST(JsonText, RefusesLoneSurrogates) {
    EXPECT_NE(errorOf(R"(["\udc00"])").find("surrogate"), std::string::npos);
    EXPECT_NE(errorOf(R"(["\ud800"])").find("surrogate"), std::string::npos);
    EXPECT_EQ(read(R"(["\ud83c\udfac"])"), json::parse("[\"\xF0\x9F\x8E\xAC\"]"));
}

TEST(JsonText, RefusesNulBytes) {
    const std::string behind("[1]\0", 4);
    const std::string inside("[\"a\0b\"]", 7);
    EXPECT_NE(errorOf(behind).find("4: a NUL byte"), std::string::npos);
    EXPECT_NE(errorOf(inside).find("a NUL byte"), std::string::npos);
}

TEST(JsonText, RefusesTextsThatAreCutOffInACharacter) {
    const std::string text = "\"\xC3\xA4\xE2\x82\xAC\xF0\x9F\x8E\xAC\"";
    EXPECT_EQ(errorOf(text), "none");
    for (std::size_t length = 1; length < text.size(); ++length)
        EXPECT_NE(errorOf(text.substr(0, length)), "none") << length;
    // The sanitizer sees whether any first byte makes a parser read behind the text.
    for (int last = 0x80; last <= 0xFF; ++last)
        EXPECT_NE(errorOf("\"Transition::Zoom" + std::string(1, static_cast<char>(last))), "none") << last;
}

TEST(JsonText, AByteOrderMarkIsPassedOver) {
    EXPECT_EQ(read("\xEF\xBB\xBF[1]"), json::parse("[1]"));
}

TEST(JsonText, AMillionLevelsTakeNoStack) {
    constexpr std::size_t levels = 1'000'000;
    const std::string text = std::string(levels, '[') + std::string(levels, ']');
    EXPECT_EQ(Reader::writeJson(read(text)), QByteArray::fromStdString(text));
}

TEST(JsonText, ATextThatIsFreedMeanwhileIsTheSame) {
    const std::string text =
        R"({"@meta":{"a":[1]},"b":[[],{},"c",-1,0.5,null,true],"d":18446744073709551616})";
    std::string written = "before ";
    int prepared = 0;
    Reader::consumeJson(
        read(text), [&](json&) { ++prepared; }, written);
    EXPECT_EQ(written, "before " + text);
    EXPECT_EQ(prepared, 10); // not "@meta" and what is in it
}

TEST(JsonText, AValueCanBeReplacedBeforeItIsWritten) {
    std::string written;
    Reader::consumeJson(
        read(R"({"a":1,"b":[2]})"),
        [](json& value) {
            if (value == 1)
                value = json::array({2, 3});
            else if (value == 2)
                value = "two";
        },
        written);
    EXPECT_EQ(written, R"({"a":["two",3],"b":["two"]})");
}

} // namespace
