// Damaged files: what is whole in them is recovered, and what is not is reported.

#include "Recovery/Recovery.h"

#include "Reader/Contents.h"
#include "Reader/Migration.h"
#include "Reader/Verify.h"
#include "support/Files.h"
#include "support/Paths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QTextCodec>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

using Reader::Damage;
using Reader::Recovered;
using Reader::RecoveryReport;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

using Names = std::vector<std::string>;

const QString name = QStringLiteral("film");

QByteArray sample(const char* file) {
    return QByteArray::fromStdString(Tests::readFile(Tests::samplesFolder() / file));
}

/// The short film as an archive: six clips, each in an object of its own.
QByteArray archive() {
    return sample("holiday-v62.xml");
}

/// The same film as JSON.
QByteArray json() {
    return sample("holiday-v63.json");
}

const Names allClips = {"Summer by the sea", "Beach", "Harbour", "Boat", "The old harbour", "Song"};

int placeOf(const QByteArray& bytes, const char* text, int from = 0) {
    const int place = bytes.indexOf(text, from);
    if (place < 0)
        throw std::logic_error(std::string("the sample lacks ") + text);
    return place;
}

/// The text between two others, both inclusive, becomes NUL bytes.
QByteArray withNul(QByteArray bytes, const char* from, const char* to, int behind = 0) {
    const int start = placeOf(bytes, from, behind);
    const int end = placeOf(bytes, to, start) + static_cast<int>(qstrlen(to));
    for (int place = start; place < end; ++place)
        bytes[place] = '\0';
    return bytes;
}

Recovered recovered(const QByteArray& bytes) {
    auto result = Reader::recover(bytes, name);
    if (!result)
        throw std::logic_error("nothing is recovered");
    return std::move(*result);
}

Names clipsOf(const Reader::Document& document) {
    Names names;
    for (const Reader::Clip& clip : Reader::listClips(document))
        names.push_back(clip.name);
    return names;
}

Names namesOf(const std::vector<Reader::RecoveredClip>& clips) {
    Names names;
    for (const Reader::RecoveredClip& clip : clips)
        names.push_back(clip.name);
    return names;
}

Names without(const char* clip) {
    Names names = allClips;
    names.erase(std::remove(names.begin(), names.end(), clip), names.end());
    return names;
}

std::vector<Damage> damagesIn(const RecoveryReport& report) {
    std::vector<Damage> damages;
    for (const Reader::DamageFinding& finding : report.findings)
        damages.push_back(finding.damage);
    return damages;
}

Names faultsOf(const Reader::Document& document) {
    Names faults;
    for (const Reader::Finding& finding : Reader::verify(document)) {
        if (finding.severity != Reader::Severity::Note)
            faults.push_back(std::string(Reader::nameOf(finding.fault)) + ' ' + finding.className + ' ' +
                             finding.path);
    }
    return faults;
}

long long timeOf(const Reader::Document& document, const std::string& clip) {
    for (const Reader::Part& part : Reader::listParts(document)) {
        if (part.kind == Reader::PartKind::Clip && part.name == clip)
            return part.time.value();
    }
    throw std::logic_error("no such clip: " + clip);
}

/// Migrates the document to the newest version, and expects those clips and no faults.
void expectMigrates(Recovered result, const Names& clips) {
    EXPECT_THAT(faultsOf(result.document), IsEmpty());
    Reader::MigrationOptions options;
    options.name = options.location = options.target = name;
    Reader::Migration migration(std::move(result.document), options);
    migration.run();
    const Reader::Document document = Reader::parse(migration.save(), name);
    EXPECT_THAT(faultsOf(document), IsEmpty());
    EXPECT_THAT(clipsOf(document), testing::UnorderedElementsAreArray(clips));
}

// Files that end in the middle

TEST(CutArchive, KeepsTheObjectsBeforeTheCut) {
    const QByteArray bytes = archive();
    const int cut = placeOf(bytes, "<name type=\"String\" value=\"Harbour\"/>") + 60;
    Recovered result = recovered(bytes.left(cut));
    EXPECT_EQ(clipsOf(result.document), (Names{"Summer by the sea", "Beach"}));
    EXPECT_FALSE(result.report.isComplete());
    EXPECT_EQ(result.report.clipsInPlace, 2U);
    EXPECT_EQ(result.report.objectsDropped, 1U);
    EXPECT_EQ(result.report.clipsLost.size(), 4U);
    EXPECT_THAT(namesOf(result.report.clipsLost), Contains("Harbour"));
    EXPECT_THAT(damagesIn(result.report), ElementsAre(Damage::CutOff));
    EXPECT_EQ(result.report.findings.front().byte, cut);
    EXPECT_EQ(result.report.version, 62);
    EXPECT_FALSE(result.report.versionGuess);
    expectMigrates(std::move(result), {"Summer by the sea", "Beach"});
}

TEST(CutArchive, KeepsTheListOfATimelineUpToTheCut) {
    // The timeline is the last object, and the cut is in its fourth clip.
    QByteArray bytes = archive();
    const int start = placeOf(bytes, " <RootObject type=\"Timeline::Object\"");
    const int end = placeOf(bytes, "</RootObject>\n", start) + 14;
    const QByteArray timeline = bytes.mid(start, end - start);
    bytes.remove(start, end - start);
    bytes.insert(placeOf(bytes, "</Archive>"), timeline);
    const int cut = placeOf(bytes, "<Item type=\"Item\" index=\"4\">", placeOf(bytes, "<clips")) + 50;
    Recovered result = recovered(bytes.left(cut));
    EXPECT_EQ(result.report.clipsInPlace, 3U);
    EXPECT_THAT(namesOf(result.report.clipsMoved), UnorderedElementsAre("Boat", "The old harbour", "Song"));
    EXPECT_EQ(timeOf(result.document, "Harbour"), 11000);
    EXPECT_THAT(result.report.clipsLost, IsEmpty());
    expectMigrates(std::move(result), allClips);
}

TEST(CutArchive, GivesAnEmptyTimelineWhereNoClipIsLeft) {
    const QByteArray bytes = archive();
    for (const char* place :
         {"<predeclarations", "<RootObject type=\"Project::Persistent", "<timeline", "<clips"}) {
        SCOPED_TRACE(place);
        Recovered result = recovered(bytes.left(placeOf(bytes, place) + 20));
        EXPECT_FALSE(result.report.isComplete());
        expectMigrates(std::move(result), {});
    }
}

TEST(CutJson, KeepsTheClipsBeforeTheCutAndGuessesTheVersion) {
    const QByteArray bytes = json();
    const int cut = placeOf(bytes, "\"Boat\"");
    Recovered result = recovered(bytes.left(cut));
    EXPECT_EQ(clipsOf(result.document), (Names{"Summer by the sea", "Beach", "Harbour"}));
    EXPECT_EQ(result.report.clipsInPlace, 3U);
    EXPECT_EQ(result.report.version, 63);
    ASSERT_TRUE(result.report.versionGuess);
    EXPECT_THAT(result.report.versionGuess->reasons, Contains(HasSubstr("before version 64")));
    EXPECT_THAT(damagesIn(result.report), testing::IsSupersetOf({Damage::CutOff, Damage::Version}));
    expectMigrates(std::move(result), {"Summer by the sea", "Beach", "Harbour"});
}

TEST(CutJson, NamesTheClipThatWasCut) {
    const QByteArray bytes = json();
    const Recovered result = recovered(bytes.left(placeOf(bytes, "\"Boat\"") + 12));
    EXPECT_THAT(namesOf(result.report.clipsLost), ElementsAre("Boat"));
}

// Lost blocks

TEST(LostBlock, OfAClipLosesThatClip) {
    Recovered result =
        recovered(withNul(archive(), "value=\"Boat\"/>\n  <enabled", "<file type=\"ObjectRef\""));
    EXPECT_THAT(namesOf(result.report.clipsLost), ElementsAre(""));
    EXPECT_EQ(result.report.clipsInPlace, 5U);
    EXPECT_EQ(result.report.objectsDropped, 1U);
    EXPECT_EQ(result.report.entriesDropped, 1U);
    EXPECT_THAT(damagesIn(result.report), ElementsAre(Damage::LostBytes));
    expectMigrates(std::move(result), without("Boat"));
}

TEST(LostBlock, OfAClipBehindItsNameNamesIt) {
    const Recovered result = recovered(withNul(archive(), "<enabled", "<overlay"));
    EXPECT_THAT(namesOf(result.report.clipsLost), ElementsAre("Summer by the sea"));
}

TEST(LostBlock, OfATimelinePutsTheClipAtItsEnd) {
    Recovered result = recovered(withNul(archive(), "index=\"3\">\n    <Key", "<timestamp"));
    EXPECT_THAT(namesOf(result.report.clipsMoved), ElementsAre("Harbour"));
    EXPECT_EQ(result.report.clipsInPlace, 5U);
    EXPECT_EQ(timeOf(result.document, "Harbour"), 28000); // where the boat and the song end
    EXPECT_EQ(timeOf(result.document, "Boat"), 16000);
    EXPECT_THAT(result.report.clipsLost, IsEmpty());
    EXPECT_FALSE(result.report.isComplete());
    expectMigrates(std::move(result), allClips);
}

TEST(LostBlock, BehindTheTimeOfAClipLeavesItInPlace) {
    const QByteArray bytes = archive();
    const int third = placeOf(bytes, "index=\"3\">\n    <Key");
    QByteArray damaged = bytes;
    const int start = placeOf(bytes, "<reversed", third);
    for (int place = start; place < start + 10; ++place)
        damaged[place] = '\0';
    Recovered result = recovered(damaged);
    EXPECT_EQ(result.report.clipsInPlace, 6U);
    EXPECT_EQ(timeOf(result.document, "Harbour"), 11000);
    expectMigrates(std::move(result), allClips);
}

TEST(LostBlock, OfATimelinesStartMakesItAnew) {
    Recovered result = recovered(withNul(archive(), "<RootObject type=\"Timeline::Object\"", "<frameRate"));
    EXPECT_EQ(result.report.clipsMoved.size(), 6U);
    EXPECT_EQ(result.report.objectsMade, 1U);
    expectMigrates(std::move(result), allClips);
}

TEST(LostBlock, OfTheRootObjectMakesItAnew) {
    Recovered result =
        recovered(withNul(archive(), "<RootObject type=\"Project::PersistentObject\"", "<timeline"));
    EXPECT_EQ(result.report.clipsInPlace, 6U);
    EXPECT_GE(result.report.objectsMade, 1U);
    expectMigrates(std::move(result), allClips);
}

TEST(LostBlock, OfTheReferenceToTheRootIsMended) {
    Recovered result = recovered(withNul(archive(), "<RootRef", "/>"));
    EXPECT_EQ(result.report.clipsInPlace, 6U);
    expectMigrates(std::move(result), allClips);
}

TEST(LostBlock, OfATrackMakesItAnewUnderItsId) {
    Recovered result = recovered(withNul(archive(), "<used", "<muted"));
    EXPECT_EQ(result.report.clipsInPlace, 6U);
    EXPECT_EQ(result.report.objectsMade, 1U);
    expectMigrates(std::move(result), allClips);
}

/// A clip whose place names no track, in a file that is damaged elsewhere, comes to a track for clips like it.
TEST(LostTrack, OfAClipInAnArchiveIsAnotherOne) {
    QByteArray bytes = archive();
    const QByteArray track = "<track type=\"ObjectRef\" value=\"15\"/>";
    bytes.replace(placeOf(bytes, track.constData(), placeOf(bytes, track.constData()) + 1), track.size(),
                  "<track type=\"ObjectRef\" value=\"0\"/>");
    Recovered result = recovered(withNul(bytes, "<typeName", "<refs"));
    EXPECT_EQ(result.report.clipsInPlace, 6U);
    EXPECT_FALSE(result.document.xml().toByteArray().contains("<track type=\"ObjectRef\" value=\"0\"/>") ||
                 result.document.xml().toByteArray().contains("<track value=\"0\" type=\"ObjectRef\"/>"));
    expectMigrates(std::move(result), allClips);
}

TEST(LostTrack, OfAClipInJsonIsAnotherOne) {
    QByteArray bytes = json();
    const int place = placeOf(bytes, "\"track\"", placeOf(bytes, "\"track\"") + 1);
    const int end = placeOf(bytes, "}", place);
    bytes.replace(place, end + 1 - place, "\"track\": null");
    Recovered result = recovered(bytes.left(bytes.lastIndexOf('}')));
    EXPECT_EQ(result.report.clipsInPlace, 6U);
    for (const auto& [id, object] : result.document.json().flat.objects) {
        const bool isTiming = object["@meta"]["class_name"] == "Timeline::ClipTiming";
        EXPECT_TRUE(!isTiming || object["track"].is_object()) << id;
    }
    expectMigrates(std::move(result), allClips);
}

TEST(LostBlock, OfAFileClearsTheReferenceToIt) {
    Recovered result = recovered(withNul(archive(), "media/harbour.jpg", "media/harbour.jpg"));
    EXPECT_EQ(result.report.referencesCleared, 1U);
    EXPECT_EQ(result.report.clipsInPlace, 6U);
    EXPECT_FALSE(result.report.isComplete());
    expectMigrates(std::move(result), allClips);
}

TEST(LostBlock, OfPredeclarationsAndCountsLosesNothing) {
    QByteArray bytes = archive();
    bytes.replace("<clips type=\"Array\" size=\"6\">", "<clips type=\"Array\" size=\"9\">");
    Recovered result = recovered(withNul(bytes, "<typeName", "<refs"));
    EXPECT_TRUE(result.report.isComplete());
    EXPECT_GE(result.report.predeclarationsMended, 1U);
    EXPECT_GE(result.report.countsMended, 1U);
    EXPECT_EQ(result.report.clipsInPlace, 6U);
    expectMigrates(std::move(result), allClips);
}

TEST(LostBlock, BehindTheProjectLosesNothing) {
    for (const QByteArray& bytes : {archive(), json()}) {
        const Recovered result = recovered(bytes + QByteArray(512, '\0'));
        EXPECT_TRUE(result.report.isComplete());
        EXPECT_THAT(damagesIn(result.report), ElementsAre(Damage::LostBytes));
        EXPECT_EQ(clipsOf(result.document), allClips);
    }
}

TEST(LostBlock, OfAJsonClipLosesThatClip) {
    Recovered result = recovered(withNul(json(), "\"name\": \"Boat\"", "\"quiz\""));
    EXPECT_EQ(result.report.clipsInPlace, 5U);
    EXPECT_EQ(result.report.clipsLost.size(), 1U);
    EXPECT_EQ(timeOf(result.document, "Song"), 0);
    expectMigrates(std::move(result), without("Boat"));
}

TEST(LostBlock, OfAJsonTimingPutsTheClipAtTheEnd) {
    const QByteArray bytes = json();
    QByteArray damaged = bytes;
    const int start = placeOf(bytes, "\"timestamp\": 16000");
    for (int place = start; place < start + 30; ++place)
        damaged[place] = '\0';
    Recovered result = recovered(damaged);
    EXPECT_THAT(namesOf(result.report.clipsMoved), ElementsAre("Boat"));
    EXPECT_EQ(result.report.clipsInPlace, 5U);
    expectMigrates(std::move(result), allClips);
}

TEST(LostBlock, OfTheJsonRootKeepsAllClips) {
    Recovered result = recovered(withNul(json(), "\"data\"", "\"timeline\""));
    EXPECT_EQ(result.report.clipsInPlace + result.report.clipsMoved.size(), 6U);
    EXPECT_FALSE(result.report.versionGuess); // the version is at the end
    expectMigrates(std::move(result), allClips);
}

/// A film in which the clip "Village" shows a timeline with the clips "Square", "Welcome" and "Church".
class LostScene : public testing::TestWithParam<const char*> {
protected:
    QByteArray m_bytes = sample(GetParam());
    Names m_clips = clipsOf(Reader::parse(m_bytes, name));

    void expectScene(Recovered result) {
        const Names clips = clipsOf(result.document);
        EXPECT_THAT(clips, testing::IsSupersetOf({"Square", "Welcome", "Church"}));
        EXPECT_EQ(clips.size(), m_clips.size());
        EXPECT_THAT(faultsOf(result.document), IsEmpty());
        Reader::MigrationOptions options;
        options.name = options.location = options.target = name;
        Reader::Migration migration(std::move(result.document), options);
        migration.run();
        EXPECT_THAT(clipsOf(Reader::parse(migration.save(), name)),
                    testing::IsSupersetOf({"Square", "Welcome", "Church"}));
    }
};

TEST_P(LostScene, KeepsTheClipIfItStillNamesItsTimeline) {
    // In JSON the timeline is inside of the clip, and is its last member but for those that are lost.
    const int behind = m_bytes.startsWith('<') ? placeOf(m_bytes, "Village")
                                               : placeOf(m_bytes, "\n        \"name\": \"Village\"");
    Recovered result = recovered(
        withNul(m_bytes, "rhythm", m_bytes.startsWith('<') ? "mediaTrack" : "stabilization", behind));
    EXPECT_THAT(namesOf(result.report.clipsReduced), ElementsAre("Village"));
    EXPECT_THAT(result.report.clipsLost, IsEmpty());
    expectScene(std::move(result));
}

TEST_P(LostScene, MakesAClipForTheTimeline) {
    const int village = placeOf(m_bytes, "Village");
    Recovered result = m_bytes.startsWith('<')
                           ? recovered(withNul(m_bytes, "<overlay", "<nestedTimeline", village))
                           : recovered(withNul(m_bytes, "\"name\"", "\"nestedTimeline\"", village - 10));
    EXPECT_THAT(result.report.clipsLost, testing::SizeIs(1));
    expectScene(std::move(result));
}

INSTANTIATE_TEST_SUITE_P(Films, LostScene,
                         testing::Values("holiday-v34.xml", "holiday-v55.xml", "holiday-v70.json",
                                         "holiday-v76.json"));

// Encodings

TEST(Encoding, AWrongDeclarationIsIgnored) {
    for (const char* declared : {"UTF-16", "Shift_JIS"}) {
        QByteArray bytes = archive();
        bytes.replace("encoding=\"UTF-8\"", QByteArray("encoding=\"") + declared + '"');
        bytes.replace("value=\"Beach\"", "value=\"Pl\xC3\xA4tze\"");
        const Recovered result = recovered(bytes);
        EXPECT_THAT(clipsOf(result.document), Contains("Pl\xC3\xA4tze"));
        EXPECT_TRUE(result.report.isComplete());
        EXPECT_EQ(result.report.encoding, "UTF-8");
        EXPECT_THAT(damagesIn(result.report), ElementsAre(Damage::Encoding));
    }
}

TEST(Encoding, BytesOfWindowsAreReadAsThat) {
    for (QByteArray bytes : {archive(), json()}) {
        bytes.replace("Beach", "Pl\xE4tze");
        const Recovered result = recovered(bytes);
        EXPECT_EQ(result.report.encoding, "windows-1252");
        EXPECT_THAT(clipsOf(result.document), Contains("Pl\xC3\xA4tze"));
        EXPECT_TRUE(result.report.isComplete());
    }
}

TEST(Encoding, BytesThatAreNoCharactersAreReplaced) {
    for (QByteArray bytes : {archive(), json()}) {
        bytes.replace("Boat", "B\xC3\xB6\xFF"
                              "t");
        const int place = bytes.indexOf('\xFF');
        const Recovered result = recovered(bytes);
        EXPECT_THAT(clipsOf(result.document), Contains("B\xC3\xB6\xEF\xBF\xBDt"));
        EXPECT_FALSE(result.report.isComplete());
        EXPECT_GE(result.report.charactersReplaced, 1U);
        ASSERT_FALSE(result.report.findings.empty());
        EXPECT_EQ(result.report.findings.front().byte, place);
        EXPECT_EQ(result.report.findings.front().damage, Damage::BadCharacters);
        EXPECT_EQ(clipsOf(result.document).size(), 6U);
    }
}

TEST(Encoding, CharactersThatXmlForbidsAreReplaced) {
    QByteArray bytes = archive();
    bytes.replace("Song", "So\x01g");
    const Recovered result = recovered(bytes);
    EXPECT_THAT(clipsOf(result.document), Contains("So\xEF\xBF\xBDg"));
    EXPECT_EQ(result.report.charactersReplaced, 1U);
}

TEST(Encoding, Utf16WithALostBlock) {
    const QString text = QString::fromUtf8(archive());
    QByteArray bytes = QTextCodec::codecForName("UTF-16LE")->fromUnicode(text);
    const int place = 2 * text.indexOf(QLatin1String("value=\"Boat\"/>\n  <enabled"));
    for (int byte = place; byte < place + 512; ++byte)
        bytes[byte] = '\0';
    Recovered result = recovered(bytes);
    EXPECT_EQ(result.report.encoding, "UTF-16");
    ASSERT_EQ(result.report.findings.size(), 1U);
    EXPECT_NEAR(static_cast<double>(result.report.findings.front().byte), place, 64);
    expectMigrates(std::move(result), without("Boat"));
}

TEST(Encoding, Utf16WithCharactersOfTwoUnitsAndHalfOnes) {
    QString text = QString::fromUtf8(archive());
    text.replace("Boat", QString::fromUtf8("B\xF0\x9F\x8E\xAC") + QChar(0xD83C) + "t");
    for (const bool isBigEndian : {false, true}) {
        QByteArray bytes(isBigEndian ? "\xFE\xFF" : "\xFF\xFE");
        for (const QChar unit : text) {
            bytes += char(isBigEndian ? unit.row() : unit.cell());
            bytes += char(isBigEndian ? unit.cell() : unit.row());
        }
        const Recovered result = recovered(bytes);
        EXPECT_EQ(result.report.encoding, "UTF-16");
        EXPECT_EQ(result.report.charactersReplaced, 1U);
        EXPECT_THAT(clipsOf(result.document), Contains("B\xF0\x9F\x8E\xAC\xEF\xBF\xBDt"));
    }
}

TEST(Encoding, OfADeclarationIsTaken) {
    QByteArray bytes = archive();
    bytes.replace(0, bytes.indexOf("?>"), "<?xml version=\"1.0\" encoding=\"windows-1251\"");
    bytes.replace("Boat", "\xCB\xEE\xE4\xEA\xE0");
    const Recovered result = recovered(bytes);
    EXPECT_EQ(result.report.encoding, "windows-1251");
    EXPECT_THAT(clipsOf(result.document),
                Contains("\xD0\x9B\xD0\xBE\xD0\xB4\xD0\xBA\xD0\xB0")); // boat in Russian
    EXPECT_TRUE(result.report.isComplete());
}

// Versions

TEST(Version, IsGuessedWhereItIsMissing) {
    QByteArray bytes = archive();
    bytes.replace(" schemaVersion=\"62\"", "");
    Recovered result = recovered(bytes);
    EXPECT_EQ(result.report.version, 62);
    ASSERT_TRUE(result.report.versionGuess);
    EXPECT_THAT(result.report.versionGuess->reasons,
                Contains(HasSubstr("\"resourcePath\": version 62 or later")));
    EXPECT_TRUE(result.report.isComplete());
    expectMigrates(std::move(result), allClips);
}

TEST(Version, IsGuessedWhereItIsWrong) {
    for (const char* wrong : {"77", "abc", "-1", "99999999999"}) {
        QByteArray bytes = archive();
        bytes.replace("schemaVersion=\"62\"", QByteArray("schemaVersion=\"") + wrong + '"');
        const Recovered result = recovered(bytes);
        EXPECT_EQ(result.report.version, 62) << wrong;
        EXPECT_THAT(damagesIn(result.report), ElementsAre(Damage::Version));
    }
    QByteArray bytes = json();
    bytes.replace("\"schemaVersion\": 63", "\"schemaVersion\": 12");
    EXPECT_EQ(recovered(bytes).report.version, 63);
}

TEST(Version, OfTheCallerIsTaken) {
    QByteArray bytes = archive();
    bytes.replace("schemaVersion=\"62\"", "schemaVersion=\"x\"");
    const auto result = Reader::recover(bytes, name, 61);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->report.version, 61);
    EXPECT_FALSE(result->report.versionGuess);
}

// Two copies

TEST(SeveralDocuments, TheOneWithMoreClipsIsTaken) {
    for (const QByteArray& bytes : {archive(), json()}) {
        const QByteArray part = bytes.left(bytes.size() * 7 / 10);
        for (const QByteArray& file : {bytes + bytes, part + bytes, bytes + part}) {
            const Recovered result = recovered(file);
            EXPECT_THAT(damagesIn(result.report), Contains(Damage::SeveralDocuments));
            EXPECT_EQ(clipsOf(result.document), allClips);
        }
    }
}

TEST(SeveralDocuments, OfTwoWholeOnesTheLastIsTaken) {
    for (const QByteArray& bytes : {archive(), json()}) {
        QByteArray other = bytes;
        other.replace("Boat", "Ship");
        EXPECT_THAT(clipsOf(recovered(bytes + other).document), Contains("Ship"));
    }
}

TEST(SeveralDocuments, TheRestOfALongerFileIsIgnored) {
    for (const QByteArray& bytes : {archive(), json()}) {
        const Recovered result = recovered(bytes + bytes.right(bytes.size() / 4));
        EXPECT_EQ(clipsOf(result.document), allClips);
    }
}

// What is no project, and hostile files

TEST(Recovery, GivesNothingForWhatIsNoProject) {
    for (const QByteArray& bytes :
         {QByteArray(), QByteArray(5000, '\0'), QByteArray("text"), QByteArray("<html><b>"),
          QByteArray("{\"a\": [1, 2"), QByteArray("\xFF\xFE\xFF\xFE")})
        EXPECT_FALSE(Reader::recover(bytes, name)) << bytes.constData();
}

TEST(Recovery, DepthTakesNoStack) {
    constexpr int depth = 200000;
    const QByteArray object = "{\"@meta\":{\"class_name\":\"Timeline::Object\",\"object_id\":1},\"clips\":[";
    EXPECT_NO_THROW(Reader::recover(object.repeated(depth), name));
    EXPECT_NO_THROW(Reader::recover("<Archive ><RootObject >" + QByteArray("<a>").repeated(depth), name));
    EXPECT_NO_THROW(
        Reader::recover("<Archive ><RootObject >" + QByteArray("<a>\0", 4).repeated(depth), name));
}

TEST(Recovery, ListsNoMoreFindingsThanItMay) {
    QByteArray bytes = "<Archive schemaVersion=\"62\">";
    bytes += QByteArray("<a b=\"\0\">", 9).repeated(3000);
    const Recovered result = recovered(bytes);
    EXPECT_EQ(result.report.findings.size(), RecoveryReport::mostFindings);
    EXPECT_GE(result.report.findingsLeftOut, 2000U);
}

TEST(Recovery, IsForErrorsOfDamagedFiles) {
    EXPECT_TRUE(Reader::isRecoverable(Reader::ErrorKind::BrokenXml));
    EXPECT_TRUE(Reader::isRecoverable(Reader::ErrorKind::BadVersion));
    EXPECT_FALSE(Reader::isRecoverable(Reader::ErrorKind::RefusedXml));
    EXPECT_FALSE(Reader::isRecoverable(Reader::ErrorKind::Unreadable));
}

TEST(Recover, JsonThatIsNestedTooDeeplyIsRefused) {
    constexpr int levels = 200000;
    for (const auto& [opening, closing] : {std::pair("[", "]"), std::pair("{\"a\":", "}")}) {
        const QByteArray deep =
            QByteArray(opening).repeated(levels) + "1" + QByteArray(closing).repeated(levels);
        const QByteArray object = R"({"@meta":{"class_name":"Note","object_id":2}})";
        const QByteArray version =
            R"({"version":"1.0","schemaVersion":)" + deep + R"(,"data":)" + object + '}';
        const QByteArray field =
            R"({"data":{"@meta":{"class_name":"Note","object_id":2},"deep":)" + deep + "}";
        for (const QByteArray& bytes : {version, field, version.left(version.size() / 2), field.left(levels)})
            EXPECT_FALSE(Reader::recover(bytes, QStringLiteral("film")));
    }
}

TEST(Recover, JsonThatIsNestedTooDeeplyBehindManyLossesIsRefused) {
    constexpr int levels = 200000;
    const QByteArray losses = QByteArray("1,\0", 3).repeated(1001);
    const QByteArray deep = QByteArray("[").repeated(levels) + "1" + QByteArray("]").repeated(levels);
    const QByteArray tracks = R"("tracks":[{"@meta":{"class_name":"Timeline::Track","object_id":2}}],)";
    EXPECT_FALSE(Reader::recover(losses + tracks + "\"links\":[" + deep + "]}", QStringLiteral("film")));
}

TEST(Recover, ArchivesMayBeCutOffAtAnyDepth) {
    const QByteArray archive = "<?xml version='1.0'?><Archive schemaVersion='60'>";
    for (const int level : {1000, 200000}) {
        auto recovered =
            Reader::recover(archive + QByteArray("<RootObject type='A' objectId='1'>").repeated(level),
                            QStringLiteral("film"));
        if (recovered) {
            const QByteArray saved = Reader::serialize(std::move(recovered->document)).bytes;
            EXPECT_NO_THROW(Reader::parse(saved, QStringLiteral("film")));
        }
    }
}

} // namespace
