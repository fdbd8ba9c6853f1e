#include "Reader/StepLog.h"
#include "Reader/Conversion.h"

#include <gtest/gtest.h>

#include <glog/logging.h>

namespace {

TEST(StepLog, KeepsWarningsAndErrorsWithTheirStep) {
    Reader::StepLog log;
    log.setStep("first");
    LOG(INFO) << "by the way";
    LOG(WARNING) << "odd";
    log.setStep("second");
    LOG(ERROR) << "wrong";
    const auto& lines = log.lines();
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

TEST(Conversion, LeadsToTheLastVersionOfArchives) {
    Reader::Conversion conversion;
    EXPECT_EQ(conversion.actualVersion(), 62);
    QDomDocument document;
    document.setContent(QStringLiteral("<Archive/>"));
    EXPECT_EQ(conversion.convert(document).first, 62);
}

} // namespace
