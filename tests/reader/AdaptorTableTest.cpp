// The table of all steps: their order, names and forms, and that CHANGES.md tells the same.

#include "Reader/Chain.h"
#include "support/Files.h"
#include "support/Paths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QRegularExpression>

#include <cctype>
#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A row of the history that people read: version, sentence, class.
using Row = std::tuple<int, std::string, std::string>;

std::vector<Row> history() {
    static const QRegularExpression line(QStringLiteral("^\\| (\\d+) \\| (.+) \\| `(\\w+)` \\|$"),
                                         QRegularExpression::MultilineOption);
    std::vector<Row> rows;
    auto matches = line.globalMatch(QString::fromStdString(Tests::readFile(Tests::changesFile())));
    while (matches.hasNext()) {
        const auto match = matches.next();
        rows.emplace_back(match.captured(1).toInt(), match.captured(2).toStdString(),
                          match.captured(3).toStdString());
    }
    return rows;
}

std::vector<std::string> classNames(int number) {
    std::vector<std::string> names;
    for (const Reader::Step& step : Reader::chain()) {
        if (step.number == number)
            names.emplace_back(step.className);
    }
    return names;
}

TEST(Chain, IsTheHistoryThatPeopleRead) {
    std::vector<Row> rows;
    for (const Reader::Step& step : Reader::chain())
        rows.emplace_back(step.number, step.summary, step.className);
    EXPECT_EQ(rows, history());
}

TEST(Chain, GoesByNumberThenByClassName) {
    const auto steps = Reader::chain();
    ASSERT_FALSE(steps.empty());
    for (std::size_t i = 1; i < steps.size(); ++i) {
        if (steps[i].number == 77)
            EXPECT_LE(steps[i - 1].number, 77);
        else
            EXPECT_LT(std::tie(steps[i - 1].number, steps[i - 1].className),
                      std::tie(steps[i].number, steps[i].className));
    }
}

TEST(Chain, VersionSeventySevenGoesByNeed) {
    // A track that the titles step makes has no `used`, so the step that prunes by it comes first.
    EXPECT_THAT(classNames(77),
                ElementsAre("V77_TrackUsedAdaptor", "V77_TitlesTrackAdaptor", "V77_TrackLevelAdaptor"));
}

TEST(Chain, NamesAreUniqueAndCarryTheirNumber) {
    std::set<std::string_view> names;
    for (const Reader::Step& step : Reader::chain()) {
        EXPECT_TRUE(names.insert(step.className).second) << step.className << " stands twice";
        EXPECT_TRUE(step.className.starts_with("V" + std::to_string(step.number) + "_")) << step.className;
        EXPECT_EQ(step.className.find(':'), std::string_view::npos) << step.className;
    }
}

TEST(Chain, SummariesAreSentencesOfTheirOwn) {
    std::set<std::string_view> summaries;
    for (const Reader::Step& step : Reader::chain()) {
        ASSERT_GT(step.summary.size(), 10U) << step.className;
        EXPECT_TRUE(std::isupper(static_cast<unsigned char>(step.summary.front()))) << step.summary;
        EXPECT_EQ(step.summary.back(), '.') << step.summary;
        EXPECT_EQ(step.summary.find('\n'), std::string_view::npos) << step.summary;
        EXPECT_TRUE(summaries.insert(step.summary).second) << step.className << ": " << step.summary;
    }
}

TEST(Chain, EachStepHasAFormThatIsMade) {
    for (const Reader::Step& step : Reader::chain()) {
        EXPECT_TRUE(step.hasXml() || step.hasJson()) << step.className;
        EXPECT_EQ(step.hasXml(), step.makeXml != nullptr) << step.className;
        EXPECT_EQ(step.hasJson(), step.makeJson != nullptr) << step.className;
        if (step.hasXml()) {
            EXPECT_TRUE(step.makeXml()) << step.className;
        }
        if (step.hasJson()) {
            EXPECT_TRUE(step.makeJson()) << step.className;
        }
        // The conversion stands between the two: what an archive needs is XML up to its last version, all later
        // steps are JSON. Two steps take both.
        const bool isForArchives = step.number <= Reader::lastXmlVersion;
        EXPECT_EQ(step.hasXml(), isForArchives) << step.className;
        EXPECT_EQ(step.hasJson(), !isForArchives || step.number == 60 || step.number == 61) << step.className;
    }
    EXPECT_EQ(Reader::lastXmlVersion, 62);
    EXPECT_EQ(Reader::currentVersion, Reader::chain().back().number);
}

TEST(Chain, NumbersWithoutAStepAreFree) {
    for (const int number : {1, 2, 3, 6, 10, 19, 30, 31, 39, 43, 45, 65, 66, 70, 73, 74, 75, 76})
        EXPECT_THAT(classNames(number), IsEmpty()) << number;
}

TEST(Chain, FindsAStepWithAndWithoutItsNamespace) {
    for (const Reader::Step& step : Reader::chain()) {
        EXPECT_EQ(Reader::findStep(step.className), &step);
        EXPECT_EQ(Reader::findStep("Project::" + std::string(step.className)), &step);
    }
}

TEST(Chain, FindsNothingByAnotherName) {
    for (const char* name :
         {"", "Project::", "V28", "28", "ClipLabelAdaptor", "V28_ClipLabelAdaptor ", " V28_ClipLabelAdaptor",
          "v28_ClipLabelAdaptor", "V28_ClipLabelAdapto", "Project::Project::V28_ClipLabelAdaptor",
          "::Project::V28_ClipLabelAdaptor", "::V28_ClipLabelAdaptor", "project::V28_ClipLabelAdaptor",
          "PortableLoadAdaptor", "Project::PortableSaveAdaptor", "ImportDescriptionAdaptor"})
        EXPECT_EQ(Reader::findStep(name), nullptr) << '"' << name << '"';
    EXPECT_EQ(Reader::findStep(std::string_view()), nullptr);
    EXPECT_EQ(Reader::findStep(std::string_view("V28_ClipLabelAdaptor\0", 21)), nullptr);
}

} // namespace
