#include "Reader/StepLog.h"
#include "Reader/Conversion.h"

#include <gtest/gtest.h>

#include <glog/logging.h>

#include <string>
#include <thread>
#include <vector>

namespace {

TEST(StepLog, RecordsWarningsAndErrorsWithTheirStep) {
    std::vector<Reader::LogLine> lines;
    {
        const Reader::StepLog log("first", lines);
        LOG(INFO) << "by the way";
        LOG(WARNING) << "odd";
    }
    {
        const Reader::StepLog log("second", lines);
        LOG(ERROR) << "wrong";
    }
    LOG(ERROR) << "between steps";
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0].step, "first");
    EXPECT_EQ(lines[0].severity, "WARNING");
    EXPECT_EQ(lines[0].text, "odd");
    EXPECT_FALSE(lines[0].isError());
    EXPECT_EQ(lines[1].step, "second");
    EXPECT_EQ(lines[1].severity, "ERROR");
    EXPECT_EQ(lines[1].text, "wrong");
    EXPECT_TRUE(lines[1].isError());
    EXPECT_TRUE(lines[1].place.starts_with("tests/reader/StepLogTest.cpp:")) << lines[1].place;
}

TEST(StepLog, IgnoresLinesOfOtherThreads) {
    std::vector<Reader::LogLine> here;
    std::vector<Reader::LogLine> there;
    const Reader::StepLog log("here", here);
    std::thread([&] {
        const Reader::StepLog other("there", there);
        LOG(ERROR) << "wrong there";
    }).join();
    LOG(ERROR) << "wrong here";
    ASSERT_EQ(here.size(), 1u);
    EXPECT_EQ(here[0].text, "wrong here");
    ASSERT_EQ(there.size(), 1u);
    EXPECT_EQ(there[0].step, "there");
    EXPECT_EQ(there[0].text, "wrong there");
}

TEST(StepLog, CutsLongLinesBetweenCharacters) {
    // glog keeps some 30,000 bytes of a line; the beginning moves the cut through a character of two, three and four.
    for (const std::string character : {"\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x8E\xAC"}) {
        for (std::size_t shift = 0; shift < character.size(); ++shift) {
            std::string text(shift, 'a');
            while (text.size() < 40000)
                text += character;
            std::vector<Reader::LogLine> lines;
            const Reader::StepLog log("step", lines);
            LOG(ERROR) << text;
            ASSERT_EQ(lines.size(), 1u);
            const std::string& kept = lines[0].text;
            EXPECT_GT(kept.size(), 29000u);
            EXPECT_LT(kept.size(), text.size());
            EXPECT_EQ(kept, text.substr(0, kept.size()));
            EXPECT_EQ((kept.size() - shift) % character.size(), 0u) << shift;
        }
    }
}

TEST(StepLog, KeepsTheLastCharacterOfShortLines) {
    for (const char* text : {"a", "\xC3\xA9", "a\xE2\x82\xAC", "\xF0\x9F\x8E\xAC", ""}) {
        std::vector<Reader::LogLine> lines;
        const Reader::StepLog log("step", lines);
        LOG(ERROR) << text;
        ASSERT_EQ(lines.size(), 1u);
        EXPECT_EQ(lines[0].text, text);
    }
}

TEST(Conversion, GivesTheLastVersionOfArchives) {
    Reader::Conversion conversion;
    EXPECT_EQ(conversion.actualVersion(), 62);
    QDomDocument document;
    document.setContent(QStringLiteral("<Archive/>"));
    EXPECT_EQ(conversion.convert(document).first, 62);
}

} // namespace
