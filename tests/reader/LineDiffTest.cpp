#include "Reader/LineDiff.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

using Reader::unifiedDiff;

namespace {

std::string diff(const QByteArray& before, const QByteArray& after) {
    return unifiedDiff(before, after, "a", "b").toStdString();
}

TEST(LineDiff, EqualTextsHaveNone) {
    EXPECT_EQ(diff("", ""), "");
    EXPECT_EQ(diff("one\ntwo\n", "one\ntwo\n"), "");
}

TEST(LineDiff, ShowsThreeLinesAround) {
    EXPECT_EQ(diff("1\n2\n3\n4\n5\n6\n7\n8\n9\n", "1\n2\n3\n4\nfive\n6\n7\n8\n9\n"),
              "--- a\n+++ b\n@@ -2,7 +2,7 @@\n 2\n 3\n 4\n-5\n+five\n 6\n 7\n 8\n");
}

TEST(LineDiff, AddsAndRemovesAtTheEnds) {
    EXPECT_EQ(diff("", "x\n"), "--- a\n+++ b\n@@ -0,0 +1,1 @@\n+x\n");
    EXPECT_EQ(diff("x\n", ""), "--- a\n+++ b\n@@ -1,1 +0,0 @@\n-x\n");
    EXPECT_EQ(diff("x\n", "w\nx\ny\n"), "--- a\n+++ b\n@@ -1,1 +1,3 @@\n+w\n x\n+y\n");
}

TEST(LineDiff, JoinsChangesThatAreNear) {
    // Six lines between two changes are one hunk, seven are two.
    EXPECT_EQ(diff("a\n1\n2\n3\n4\n5\n6\nb\n", "A\n1\n2\n3\n4\n5\n6\nB\n"),
              "--- a\n+++ b\n@@ -1,8 +1,8 @@\n-a\n+A\n 1\n 2\n 3\n 4\n 5\n 6\n-b\n+B\n");
    EXPECT_EQ(diff("a\n1\n2\n3\n4\n5\n6\n7\nb\n", "A\n1\n2\n3\n4\n5\n6\n7\nB\n"),
              "--- a\n+++ b\n@@ -1,4 +1,4 @@\n-a\n+A\n 1\n 2\n 3\n@@ -6,4 +6,4 @@\n 5\n 6\n 7\n-b\n+B\n");
}

TEST(LineDiff, MatchesLinesThatComeOftenByThoseThatComeOnce) {
    EXPECT_EQ(
        diff("<a>\n <x/>\n</a>\n<b>\n <x/>\n</b>\n", "<a>\n <x/>\n <y/>\n</a>\n<b>\n <x/>\n <y/>\n</b>\n"),
        "--- a\n+++ b\n@@ -1,6 +1,8 @@\n <a>\n  <x/>\n+ <y/>\n </a>\n <b>\n  <x/>\n+ <y/>\n </b>\n");
}

/// Applies a diff to the lines of a text.
std::vector<std::string> applied(const std::vector<std::string>& before, const std::string& text) {
    std::vector<std::string> result;
    std::size_t next = 0;
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t end = text.find('\n', at);
        const std::string line = text.substr(at, end - at);
        at = end + 1;
        if (line.rfind("---", 0) == 0 || line.rfind("+++", 0) == 0)
            continue;
        if (line.rfind("@@ -", 0) == 0) {
            const std::size_t first = std::stoul(line.substr(4));
            const std::size_t count = std::stoul(line.substr(line.find(',') + 1));
            for (const std::size_t start = count == 0 ? first : first - 1; next < start;)
                result.push_back(before.at(next++));
            continue;
        }
        if (line[0] != '+') {
            EXPECT_EQ(before.at(next), line.substr(1));
            ++next;
        }
        if (line[0] != '-')
            result.push_back(line.substr(1));
    }
    while (next < before.size())
        result.push_back(before.at(next++));
    return result;
}

QByteArray joined(const std::vector<std::string>& lines) {
    QByteArray text;
    for (const std::string& line : lines)
        text += QByteArray::fromStdString(line) + '\n';
    return text;
}

TEST(LineDiff, GivesTheTextAfterWhenItIsApplied) {
    unsigned state = 7;
    const auto next = [&state](unsigned most) {
        state = state * 1664525U + 1013904223U;
        return (state >> 8U) % most;
    };
    for (int round = 0; round < 300; ++round) {
        std::vector<std::string> before;
        for (unsigned line = 0, count = next(30); line < count; ++line)
            before.push_back("l" + std::to_string(next(12)));
        std::vector<std::string> after = before;
        for (unsigned edit = 0, count = next(8); edit < count; ++edit) {
            const auto place = static_cast<std::ptrdiff_t>(next(static_cast<unsigned>(after.size()) + 1));
            if (next(2) == 0 || after.empty())
                after.insert(after.begin() + place, "l" + std::to_string(next(14)));
            else
                after.erase(after.begin() + std::min(place, static_cast<std::ptrdiff_t>(after.size()) - 1));
        }
        EXPECT_EQ(applied(before, diff(joined(before), joined(after))), after);
    }
}

TEST(LineDiff, LargeTextsTakeLittleTime) {
    // Each of 100,000 pairs of lines gets a third one, and no line but the first comes once.
    QByteArray before;
    QByteArray after;
    for (int object = 0; object < 100000; ++object) {
        const QByteArray start = "<object id='" + QByteArray::number(object) + "'>\n";
        before += start + " <same/>\n";
        after += start + " <same/>\n <new/>\n";
    }
    EXPECT_EQ(unifiedDiff(before, after, "a", "b").count("\n+ <new/>"), 100000);
    const QByteArray one = QByteArray("x\n").repeated(50000);
    const QByteArray other = QByteArray("y\n").repeated(50000);
    EXPECT_EQ(unifiedDiff(one, other, "a", "b").count("\n-x"), 50000);
}

TEST(IndentedJson, HasOneValueALine) {
    EXPECT_EQ(Reader::indented(R"({"a":[1,{"b":"x,{\"}"}],"c":{},"d":[]})").toStdString(),
              "{\n \"a\": [\n  1,\n  {\n   \"b\": \"x,{\\\"}\"\n  }\n ],\n \"c\": {},\n \"d\": []\n}");
    const std::string text = R"({"k":[[],[[]],{"a":{}},"\\",-1.5,null,true]})";
    EXPECT_EQ(nlohmann::json::parse(Reader::indented(QByteArray::fromStdString(text)).toStdString()),
              nlohmann::json::parse(text));
}

} // namespace
