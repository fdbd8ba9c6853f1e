// The whole migration: which steps run, what they report, and that the result is always the same.

#include "Reader/Error.h"
#include "support/Compare.h"
#include "support/Findings.h"
#include "support/Holiday.h"
#include "support/Sanitizers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDomDocument>

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <vector>

using nlohmann::json;
using Reader::Document;
using testing::ElementsAre;
using testing::IsEmpty;
using Tests::bytesOf;
using Tests::expectClips;
using Tests::filmOf;
using Tests::migrated;
using Tests::Project;
using Tests::reelVersion;
using Tests::Result;
using Tests::sampleOf;
using Tests::sinceQuizzes;
using Tests::Strings;

namespace {

class MigrationTest : public Tests::HolidayTest {};

TEST_P(MigrationTest, RunsTheStepsOfTheTableInItsOrder) {
    Strings expected;
    Strings passedBy;
    for (const Reader::AdaptorRow& step : Reader::adaptorTable()) {
        if (!step.isStep() || step.number <= version())
            continue;
        const bool runs =
            GetParam().isXml && step.number <= Reader::lastXmlVersion ? step.hasXml() : step.hasJson();
        (runs ? expected : passedBy).emplace_back(step.className);
    }
    EXPECT_EQ(result().report.steps, expected);
    EXPECT_EQ(result().report.skipped, passedBy);
    EXPECT_EQ(result().report.from, version());
    EXPECT_EQ(result().report.to, Reader::currentVersion);
}

TEST_P(MigrationTest, ReportsTheArchiveStepThatJsonBelow62Skips) {
    if (!GetParam().isXml && version() < 62)
        EXPECT_THAT(result().report.skipped, ElementsAre("V62_CollectionItemPayloadAdaptor"));
    else
        EXPECT_THAT(result().report.skipped, IsEmpty());
}

TEST_P(MigrationTest, LogsNothing) {
    for (const Reader::LogLine& line : result().report.log)
        ADD_FAILURE() << line.step << ": " << line.severity << ' ' << line.text;
}

TEST_P(MigrationTest, OnlyQuizzesAreLost) {
    std::set<std::string> lost;
    for (const Reader::Loss& loss : result().report.losses) {
        EXPECT_TRUE(loss.isIntended) << loss.part.className << ' ' << loss.part.id << ": " << loss.reason;
        if (loss.part.kind == Reader::PartKind::Clip)
            lost.insert(loss.part.name);
    }
    const bool hasQuizzes = isLong() && version() >= sinceQuizzes && version() < 69;
    EXPECT_EQ(lost, hasQuizzes ? std::set<std::string>({"Where was the boat?", "Church quiz"})
                               : std::set<std::string>());
}

TEST_P(MigrationTest, TheResultHasNoFaults) {
    const Project film = project();
    EXPECT_THAT(Tests::linesOf(Reader::verify(film.document())), IsEmpty());
    EXPECT_THAT(result().report.duplicateIds, IsEmpty());
}

TEST_P(MigrationTest, TheSampleHasNoFaults) {
    const Document document = Reader::parse(bytesOf(GetParam()), QStringLiteral("holiday"));
    EXPECT_EQ(document.version(), version());
    EXPECT_EQ(document.isXml(), GetParam().isXml);
    auto findings = Reader::verify(document);
    if (version() == reelVersion) {
        // Fifteen effects that no clip lists, and the noise profile of one of them.
        const auto removed = std::erase_if(findings, [](const Reader::Finding& finding) {
            return finding.fault == Reader::Fault::Unreachable;
        });
        EXPECT_EQ(removed, 16u);
    }
    EXPECT_THAT(Tests::linesOf(findings), IsEmpty());
}

TEST_P(MigrationTest, TheSameSampleGivesTheSameBytes) {
    EXPECT_EQ(migrated(bytesOf(GetParam())).bytes, result().bytes);
}

TEST_P(MigrationTest, StoppingAtAnyVersionGivesTheSameProject) {
    const json atOnce = Tests::renumbered(result().bytes);
    const QByteArray bytes = bytesOf(GetParam());
    const int first = GetParam().isXml ? version() : std::max(version(), Reader::lastXmlVersion + 1);
    // A sanitizer takes long: with it only the oldest sample stops at all versions, the others at every third.
    const int stride = Tests::isSanitized && first > 3 ? 3 : 1;
    for (int stop = first; stop < Reader::currentVersion; stop += stride) {
        const Result half = migrated(bytes, stop);
        const Result whole = migrated(half.bytes);
        EXPECT_EQ(Tests::difference(atOnce, Tests::renumbered(whole.bytes)), "") << "stopped at " << stop;
        EXPECT_FALSE(whole.report.hasErrors()) << "stopped at " << stop;
        if (HasFailure())
            return;
    }
}

TEST_P(MigrationTest, TheOrderOfRootObjectsDoesNotMatter) {
    if (!GetParam().isXml)
        return;
    QDomDocument document;
    ASSERT_TRUE(document.setContent(bytesOf(GetParam())));
    QDomElement archive = document.documentElement();
    std::vector<QDomElement> objects;
    for (QDomElement e = archive.firstChildElement(QStringLiteral("RootObject")); !e.isNull();
         e = e.nextSiblingElement(QStringLiteral("RootObject")))
        objects.push_back(e);
    for (auto it = objects.rbegin(); it != objects.rend(); ++it)
        archive.appendChild(*it);
    const Result reversed = migrated(document.toByteArray(1));
    EXPECT_EQ(Tests::difference(Tests::renumbered(result().bytes), Tests::renumbered(reversed.bytes)), "");
}

/// The id of the track of the first clip of that name in an archive.
QString trackOf(const QDomDocument& xml, const QString& clipName) {
    std::map<QString, QString> names; // by id of the clip
    const QDomNodeList objects = xml.elementsByTagName(QStringLiteral("RootObject"));
    for (int i = 0; i < objects.size(); ++i) {
        const QDomElement object = objects.at(i).toElement();
        names[object.attribute(QStringLiteral("objectId"))] =
            object.firstChildElement(QStringLiteral("name")).attribute(QStringLiteral("value"));
    }
    const QDomNodeList timings = xml.elementsByTagName(QStringLiteral("Value"));
    for (int i = 0; i < timings.size(); ++i) {
        const QDomElement timing = timings.at(i).toElement();
        const QString clip =
            timing.parentNode().firstChildElement(QStringLiteral("Key")).attribute(QStringLiteral("value"));
        if (names[clip] == clipName)
            return timing.firstChildElement(QStringLiteral("track")).attribute(QStringLiteral("value"));
    }
    return {};
}

// The question of a quiz is moved from an archive of its own, which may use ids of the project.
TEST(QuizMigrationTest, AnswersWithIdsOfTheProjectGetNoReferencesOfIt) {
    const Tests::Sample& sample = sampleOf(34);
    const Document document = Reader::parse(bytesOf(sample), QStringLiteral("holiday"));
    const QString track = trackOf(document.xml(), QStringLiteral("Where was the boat?"));
    ASSERT_FALSE(track.isEmpty());
    QString text = QString::fromUtf8(bytesOf(sample));
    const QString points = QStringLiteral("&lt;points type=\"int32_t\" value=\"3\"/&gt;");
    ASSERT_EQ(text.count(points), 2);
    text.replace(points,
                 points + QStringLiteral("&lt;answer type=\"Quiz::Answer\" objectId=\"%1\"/&gt;").arg(track));

    const Result result = migrated(text.toUtf8());
    EXPECT_THAT(result.report.duplicateIds, ElementsAre(track.toULongLong()));
    expectClips(Project(result.bytes), filmOf(sample).front(), sample.version);
}

// A theme has no schema version, and the version of the archive does not matter.
TEST(MovedMigrationTest, RunsAsItWasMade) {
    const QByteArray bytes = bytesOf(sampleOf(76));
    const auto migrationOf = [](const QByteArray& project) {
        return Reader::Migration(Reader::parse(project, QStringLiteral("holiday")),
                                 Tests::optionsTo(Reader::currentVersion));
    };
    Reader::Migration first = migrationOf(bytes);
    Reader::Migration moved = std::move(first);
    Reader::Migration assigned = migrationOf(bytesOf(sampleOf(70)));
    assigned = std::move(moved);
    assigned.run();
    EXPECT_EQ(assigned.report().from, 76);
    EXPECT_EQ(assigned.save(), migrated(bytes).bytes);
}

TEST(SingleStepTest, OfNoOrOfTheOtherFormIsRefused) {
    Reader::Migration migration(Reader::parse(bytesOf(sampleOf(76)), QStringLiteral("holiday")),
                                Tests::optionsTo(Reader::currentVersion));
    const auto kindOf = [&](const std::string& step) -> std::optional<Reader::ErrorKind> {
        try {
            migration.runOnly(step);
        } catch (const Reader::Error& error) {
            EXPECT_EQ(error.facts().step, step);
            return error.kind();
        }
        return std::nullopt;
    };
    EXPECT_EQ(kindOf("V1_Nothing"), Reader::ErrorKind::UnknownStep);
    EXPECT_EQ(kindOf("V4_TrackValueAdaptor"), Reader::ErrorKind::NoSuchForm);
}

TEST(ThemeMigrationTest, ThemesOfEveryArchiveAreUpdated) {
    for (const int version : {3, 62}) {
        const QByteArray archive =
            "<Archive schemaVersion='" + QByteArray::number(version) +
            "'><RootRef type='ObjectRef' value='2'/><RootObject type='Theme::Object' objectId='2'>"
            "<transition type='ObjectRef' value='0'/></RootObject></Archive>";
        QDomDocument document;
        ASSERT_TRUE(document.setContent(migrated(archive, Reader::lastXmlVersion).bytes));
        const QDomElement theme = document.documentElement().firstChildElement(QStringLiteral("RootObject"));
        EXPECT_EQ(theme.attribute(QStringLiteral("type")), "Theme::Object");
        EXPECT_TRUE(theme.firstChildElement(QStringLiteral("transition")).isNull()) << version;
        const auto list = theme.firstChildElement(QStringLiteral("transitionsList"));
        EXPECT_EQ(list.attribute(QStringLiteral("size")), "0") << version;
        const auto least = theme.firstChildElement(QStringLiteral("minSceneDuration"));
        EXPECT_EQ(least.attribute(QStringLiteral("value")), "1000") << version;
    }
}

INSTANTIATE_TEST_SUITE_P(Samples, MigrationTest, testing::ValuesIn(Tests::samples), Tests::sampleName);

} // namespace
