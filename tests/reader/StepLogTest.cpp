#include "Reader/StepLog.h"
#include "Reader/Conversion.h"

#include <gtest/gtest.h>

#include <glog/logging.h>

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

TEST(Conversion, GivesTheLastVersionOfArchives) {
    Reader::Conversion conversion;
    EXPECT_EQ(conversion.actualVersion(), 62);
    QDomDocument document;
    document.setContent(QStringLiteral("<Archive/>"));
    EXPECT_EQ(conversion.convert(document).first, 62);
}

} // namespace
