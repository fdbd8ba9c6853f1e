// The table of all adaptors: their order, names and forms, and its agreement with CHANGES.md.

#include "Reader/AdaptorTable.h"
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

/// A row of the table in CHANGES.md: version, sentence, class.
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

/// All steps in the order of the table.
std::vector<Reader::AdaptorRow> steps() {
    std::vector<Reader::AdaptorRow> rows;
    for (const Reader::AdaptorRow& row : Reader::adaptorTable()) {
        if (row.isStep())
            rows.push_back(row);
    }
    return rows;
}

std::vector<std::string> namesOf(Reader::Stage stage) {
    std::vector<std::string> names;
    for (const Reader::AdaptorRow* row : Reader::adaptorsOf(stage))
        names.emplace_back(row->className);
    return names;
}

std::vector<std::string> classNames(int number) {
    std::vector<std::string> names;
    for (const Reader::AdaptorRow& step : steps()) {
        if (step.number == number)
            names.emplace_back(step.className);
    }
    return names;
}

TEST(AdaptorTable, AgreesWithTheHistoryInTheDocumentation) {
    std::vector<Row> rows;
    for (const Reader::AdaptorRow& step : steps())
        rows.emplace_back(step.number, step.summary, step.className);
    EXPECT_EQ(rows, history());
}

TEST(AdaptorTable, IsSortedByNumberThenByClassName) {
    const auto rows = steps();
    ASSERT_FALSE(rows.empty());
    for (std::size_t i = 1; i < rows.size(); ++i) {
        if (rows[i].number == 77)
            EXPECT_LE(rows[i - 1].number, 77);
        else
            EXPECT_LT(std::tie(rows[i - 1].number, rows[i - 1].className),
                      std::tie(rows[i].number, rows[i].className));
    }
}

TEST(AdaptorTable, VersionSeventySevenIsSortedByDependency) {
    // A track that the titles step creates has no `used`, so the step that reads `used` runs first.
    EXPECT_THAT(classNames(77),
                ElementsAre("V77_TrackUsedAdaptor", "V77_TitlesTrackAdaptor", "V77_TrackLevelAdaptor"));
}

TEST(AdaptorTable, NamesAreUniqueAndCarryTheirNumber) {
    std::set<std::string_view> names;
    for (const Reader::AdaptorRow& step : steps()) {
        EXPECT_TRUE(names.insert(step.className).second) << step.className << " is there twice";
        EXPECT_TRUE(step.className.starts_with("V" + std::to_string(step.number) + "_")) << step.className;
        EXPECT_EQ(step.className.find(':'), std::string_view::npos) << step.className;
    }
}

TEST(AdaptorTable, SummariesAreSentencesOfTheirOwn) {
    std::set<std::string_view> summaries;
    for (const Reader::AdaptorRow& step : steps()) {
        ASSERT_GT(step.summary.size(), 10U) << step.className;
        EXPECT_TRUE(std::isupper(static_cast<unsigned char>(step.summary.front()))) << step.summary;
        EXPECT_EQ(step.summary.back(), '.') << step.summary;
        EXPECT_EQ(step.summary.find('\n'), std::string_view::npos) << step.summary;
        EXPECT_TRUE(summaries.insert(step.summary).second) << step.className << ": " << step.summary;
    }
}

TEST(AdaptorTable, EachStepHasAFormThatCanBeCreated) {
    for (const Reader::AdaptorRow& step : steps()) {
        EXPECT_TRUE(step.hasXml() || step.hasJson()) << step.className;
        if (step.hasXml()) {
            EXPECT_TRUE(step.makeXml()) << step.className;
        }
        if (step.hasJson()) {
            EXPECT_TRUE(step.makeJson()) << step.className;
        }
        // The conversion is between the two: steps up to the last version of archives have an XML form, later
        // ones a JSON form. Two steps have both.
        const bool isForArchives = step.number <= Reader::lastXmlVersion;
        EXPECT_EQ(step.hasXml(), isForArchives) << step.className;
        EXPECT_EQ(step.hasJson(), !isForArchives || step.number == 60 || step.number == 61) << step.className;
    }
    EXPECT_EQ(Reader::lastXmlVersion, 62);
    EXPECT_EQ(Reader::currentVersion, steps().back().number);
}

TEST(AdaptorTable, NumbersWithoutAStepAreUnused) {
    for (const int number : {1, 2, 3, 6, 10, 19, 30, 31, 39, 43, 45, 65, 66, 70, 73, 74, 75, 76})
        EXPECT_THAT(classNames(number), IsEmpty()) << number;
}

TEST(AdaptorTable, AllOtherAdaptorsRunAtAStage) {
    using Reader::Stage;
    EXPECT_THAT(namesOf(Stage::AfterLoading), ElementsAre("OverlayFileContentReadAdaptor"));
    EXPECT_THAT(namesOf(Stage::BeforeSteps), ElementsAre("ThemeTransitionsAndSceneAdaptor"));
    EXPECT_THAT(namesOf(Stage::BeforeConversion), ElementsAre("ImportDescriptionAdaptor"));
    EXPECT_THAT(namesOf(Stage::AfterSteps), ElementsAre("PortableLoadAdaptor"));
    EXPECT_THAT(namesOf(Stage::BeforeSaving), ElementsAre("PortableSaveAdaptor"));
    EXPECT_THAT(namesOf(Stage::BeforeBundling), ElementsAre("OverlayFileContentWriteAdaptor"));
    EXPECT_THAT(namesOf(Stage::OnRequest), ElementsAre("CollectionItemPreviewUrlsAdaptor"));
    for (const Reader::AdaptorRow& row : Reader::adaptorTable()) {
        EXPECT_EQ(row.number == 0, !row.isStep()) << row.className;
        EXPECT_EQ(row.hasXml(), row.hasXml() && row.makeXml()) << row.className;
        EXPECT_EQ(row.hasJson(), row.hasJson() && row.makeJson()) << row.className;
    }
}

TEST(AdaptorTable, ListsTheStepsThatADocumentNeeds) {
    using Bundle::Backend;
    const auto numbers = [](const std::vector<const Reader::AdaptorRow*>& rows) {
        std::vector<int> found;
        for (const Reader::AdaptorRow* row : rows)
            found.push_back(row->number);
        return found;
    };
    EXPECT_THAT(numbers(Reader::stepsToRun(Backend::Xml, 60, 64)), ElementsAre(61, 62, 63, 64, 64));
    EXPECT_THAT(numbers(Reader::stepsToRun(Backend::Xml, 60, 61)), ElementsAre(61));
    EXPECT_THAT(numbers(Reader::stepsToRun(Backend::Xml, 63, 67)), ElementsAre(64, 64, 67));
    EXPECT_THAT(numbers(Reader::stepsToRun(Backend::Json, 60, 64)), ElementsAre(61, 63, 64, 64));
    EXPECT_THAT(numbers(Reader::stepsFor(Backend::Json, 60, 64)), ElementsAre(61, 62, 63, 64, 64));
    EXPECT_THAT(numbers(Reader::stepsFor(Backend::Xml, 60, 77)), ElementsAre(61, 62));
    EXPECT_THAT(numbers(Reader::stepsToRun(Backend::Json, 77, 77)), IsEmpty());
}

TEST(AdaptorTable, FindsAnAdaptorWithAndWithoutItsNamespace) {
    for (const Reader::AdaptorRow& row : Reader::adaptorTable()) {
        EXPECT_EQ(Reader::findAdaptor(row.className), &row);
        EXPECT_EQ(Reader::findAdaptor("Project::" + std::string(row.className)), &row);
    }
}

TEST(AdaptorTable, FindsNothingUnderAnotherName) {
    for (const char* name :
         {"", "Project::", "V28", "28", "ClipLabelAdaptor", "V28_ClipLabelAdaptor ", " V28_ClipLabelAdaptor",
          "v28_ClipLabelAdaptor", "V28_ClipLabelAdapto", "Project::Project::V28_ClipLabelAdaptor",
          "::Project::V28_ClipLabelAdaptor", "::V28_ClipLabelAdaptor", "project::V28_ClipLabelAdaptor",
          "PortableLoad", "ImportDescription", "XmlToJson"})
        EXPECT_EQ(Reader::findAdaptor(name), nullptr) << '"' << name << '"';
    EXPECT_EQ(Reader::findAdaptor(std::string_view()), nullptr);
    EXPECT_EQ(Reader::findAdaptor(std::string_view("V28_ClipLabelAdaptor\0", 21)), nullptr);
}

} // namespace
