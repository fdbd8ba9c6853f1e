// The schema version of a document without one is shown by its classes and fields.

#include "Recovery/VersionGuess.h"

#include "Reader/AdaptorTable.h"
#include "Reader/Migration.h"
#include "Recovery/Recovery.h"
#include "bench/Damage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QRegularExpression>

#include <string>

using Bundle::Backend;
using testing::Contains;
using testing::HasSubstr;

namespace {

const QString name = QStringLiteral("film");

/// The text of a document without its schema version.
QByteArray withoutVersion(const QByteArray& bytes) {
    static const QRegularExpression attribute(QStringLiteral(" schemaVersion=\"\\d+\""));
    static const QRegularExpression member(QStringLiteral("\"schemaVersion\":\\d+,"));
    QString text = QString::fromUtf8(bytes);
    return text.remove(attribute).remove(member).toUtf8();
}

QByteArray migrated(const QByteArray& bytes, int to) {
    Reader::MigrationOptions options;
    options.name = options.location = options.target = name;
    options.to = to;
    Reader::Migration migration(Reader::parse(bytes, name), options);
    migration.run();
    return migration.save();
}

TEST(VersionGuess, AgreesWithEveryVersionOfAFilm) {
    for (const int first : {3, 55}) {
        const QByteArray film = Bench::projectWithClips(first, 12);
        for (int version = first; version <= Reader::currentVersion; ++version) {
            const auto result = Reader::recover(withoutVersion(migrated(film, version)), name);
            ASSERT_TRUE(result) << version;
            const auto& guess = result->report.versionGuess;
            ASSERT_TRUE(guess) << version;
            EXPECT_LE(guess->version, version);
            EXPECT_GE(guess->highest, version);
            // No more than a few versions come into question.
            EXPECT_LE(guess->highest - guess->version, 6) << version;
            EXPECT_FALSE(guess->reasons.empty());
        }
    }
}

TEST(VersionGuess, IsTheLowestPossibleVersion) {
    Reader::VersionFacts facts;
    facts.addObject("Timeline::ClipTiming", false);
    facts.addField("Timeline::ClipTiming", "timingMode", "int32_t");
    facts.addField("Timeline::ClipTiming", "transitionHalf", "int64_t");
    const auto guess = facts.guess(Backend::Xml);
    EXPECT_EQ(guess.version, 29);
    EXPECT_EQ(guess.highest, 45);
    EXPECT_THAT(guess.reasons, Contains("a Timeline::ClipTiming has \"timingMode\": version 29 or later"));
    EXPECT_THAT(guess.reasons, Contains(HasSubstr("before version 46")));
}

TEST(VersionGuess, DamagedObjectsShowNothingByWhatTheyLack) {
    Reader::VersionFacts facts;
    facts.addObject("Timeline::ClipTiming", false);
    facts.addField("Timeline::ClipTiming", "timingMode", "int32_t");
    EXPECT_EQ(facts.guess(Backend::Xml).highest, Reader::lastXmlVersion);
}

TEST(VersionGuess, TracksShowWhetherTheirTypesAreOldOrNew) {
    Reader::VersionFacts old;
    old.addTrackType(16);
    EXPECT_EQ(old.guess(Backend::Json).highest,
              Reader::currentVersion); // also the type of a new titles track
    old.addTrackType(80);
    EXPECT_EQ(old.guess(Backend::Json).highest, 71);
    Reader::VersionFacts changed;
    changed.addTrackType(16);
    changed.addTrackType(1);
    EXPECT_EQ(changed.guess(Backend::Json).version, 72);
}

TEST(VersionGuess, StaysInTheVersionsOfTheForm) {
    EXPECT_EQ(Reader::VersionFacts().guess(Backend::Json).version, 63);
    EXPECT_EQ(Reader::VersionFacts().guess(Backend::Json).highest, 77);
    EXPECT_EQ(Reader::VersionFacts().guess(Backend::Xml).version, 3);
    EXPECT_EQ(Reader::VersionFacts().guess(Backend::Xml).highest, 62);
    Reader::VersionFacts early;
    early.addField("Effect::Object", "location");
    EXPECT_EQ(early.guess(Backend::Json).version, 59);
}

} // namespace
