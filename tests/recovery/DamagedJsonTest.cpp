// A small film as JSON with one damage at a time: what becomes of the object, the list or the text at that place.

#include "Recovery/Recovery.h"

#include "Reader/Contents.h"
#include "Reader/Verify.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

using nlohmann::json;
using Reader::Damage;
using Reader::Recovered;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

using Names = std::vector<std::string>;

const QString name = QStringLiteral("film");

/// Bytes of a lost block.
const QByteArray lost(8, '\0');

/// "Beach" from 0 to 4 seconds, and "Boat" from 4 to 6 seconds.
const QByteArray film = R"(
{"data": {"@meta": {"class_name": "Project::PersistentObject", "object_id": 1},
  "content": {"@meta": {"class_name": "Project::Content", "object_id": 2},
   "portable": false,
   "timeline": {"@meta": {"class_name": "Timeline::Object", "object_id": 3},
    "clips": [
     {"clip": {"@meta": {"class_name": "Timeline::Clip", "object_id": 4},
       "effects": [], "name": "Beach", "sourceDuration": 4000, "timeline": {"@meta_reference": 3}, "type": 1},
      "timing": {"@meta": {"class_name": "Timeline::ClipTiming", "object_id": 5},
       "duration": 4000, "timestamp": 0,
       "track": {"@meta": {"class_name": "Timeline::Track", "object_id": 6},
        "gapless": true, "hidden": false, "linked": false, "muted": false,
        "timeline": {"@meta_reference": 3}, "type": 16, "used": true}}},
     {"clip": {"@meta": {"class_name": "Timeline::Clip", "object_id": 7},
       "effects": [], "name": "Boat", "sourceDuration": 2000, "timeline": {"@meta_reference": 3}, "type": 1},
      "timing": {"@meta": {"class_name": "Timeline::ClipTiming", "object_id": 8},
       "duration": 2000, "timestamp": 4000, "track": {"@meta_reference": 6}}}],
    "frameRate": 25.0,
    "height": 1080,
    "links": [
     {"link": {"@meta": {"class_name": "Timeline::Link", "object_id": 9}, "master": {"@meta_reference": 4}},
      "slave": {"@meta_reference": 7}}],
    "name": "Film",
    "tracks": [{"@meta_reference": 6}],
    "trackingLinks": [],
    "transitions": [
     {"clipFrom": {"@meta_reference": 4}, "clipTo": {"@meta_reference": 7},
      "transition": {"@meta": {"class_name": "Transition::Fade", "object_id": 10}}}],
    "width": 1920},
   "userCollection": {"@meta": {"class_name": "EditorCollection::UserObject", "object_id": 11},
    "items": [{"@meta": {"class_name": "Collection::Item", "object_id": 12}, "uniqueId": "beach"}]}},
  "resourceTable": {"@meta": {"class_name": "ResourceTable::Object", "object_id": 13},
   "resource2fileInfo": []}},
 "schemaVersion": 63, "version": "1.0"}
)";

/// The film with another text in place of the first one that is `from`.
QByteArray filmWith(const QByteArray& from, const QByteArray& to) {
    const int place = film.indexOf(from);
    if (place < 0)
        throw std::logic_error("the film lacks " + from.toStdString());
    return QByteArray(film).replace(place, from.size(), to);
}

/// The same in a file that has lost its end. No object is damaged by that.
QByteArray cutFilmWith(const QByteArray& from, const QByteArray& to) {
    const QByteArray bytes = filmWith(from, to);
    return bytes.left(bytes.lastIndexOf('}'));
}

Recovered recovered(const QByteArray& bytes) {
    auto result = Reader::recover(bytes, name);
    if (!result)
        throw std::logic_error("nothing is recovered");
    return std::move(*result);
}

Names clipsOf(const Recovered& result) {
    Names names;
    for (const Reader::Clip& clip : Reader::listClips(result.document))
        names.push_back(clip.name);
    return names;
}

Names namesOf(const std::vector<Reader::RecoveredClip>& clips) {
    Names names;
    for (const Reader::RecoveredClip& clip : clips)
        names.push_back(clip.name);
    return names;
}

std::vector<Damage> damagesIn(const Recovered& result) {
    std::vector<Damage> damages;
    for (const Reader::DamageFinding& finding : result.report.findings)
        damages.push_back(finding.damage);
    return damages;
}

Names faultsOf(const Recovered& result) {
    Names faults;
    for (const Reader::Finding& finding : Reader::verify(result.document)) {
        if (finding.severity != Reader::Severity::Note)
            faults.push_back(std::string(Reader::nameOf(finding.fault)) + ' ' + finding.className + ' ' +
                             finding.path);
    }
    return faults;
}

/// The only object of a class.
const json& objectOf(const Recovered& result, const std::string& className) {
    const json* found = nullptr;
    for (const auto& [id, object] : result.document.json().flat.objects) {
        if (object["@meta"]["class_name"] == className) {
            if (found)
                throw std::logic_error("several objects of " + className);
            found = &object;
        }
    }
    if (!found)
        throw std::logic_error("no " + className);
    return *found;
}

const json& timelineOf(const Recovered& result) {
    return objectOf(result, "Timeline::Object");
}

const json& objectAt(const Recovered& result, unsigned long long id) {
    return result.document.json().flat.objects.at(id);
}

TEST(DamagedJson, TheFilmIsHealthyBefore) {
    const Recovered result = recovered(film);
    EXPECT_THAT(result.report.findings, IsEmpty());
    EXPECT_THAT(faultsOf(result), IsEmpty());
    EXPECT_THAT(clipsOf(result), ElementsAre("Beach", "Boat"));
}

TEST(DamagedJson, AFileThatLostItsLastBraceLosesNothingElse) {
    const Recovered result = recovered(cutFilmWith("Boat", "Ship"));
    EXPECT_THAT(damagesIn(result), ElementsAre(Damage::CutOff));
    EXPECT_EQ(result.report.clipsInPlace, 2U);
    EXPECT_EQ(result.report.objectsWhole, 13U);
    EXPECT_TRUE(timelineOf(result)["links"].is_array());
    EXPECT_THAT(clipsOf(result), ElementsAre("Beach", "Ship"));
}

// Lists that have lost their start

TEST(LostStart, OfTheListOfLinksKeepsThem) {
    const Recovered result = recovered(filmWith("\"links\": [", lost));
    ASSERT_EQ(timelineOf(result)["links"].size(), 1U);
    EXPECT_EQ(timelineOf(result)["links"][0]["slave"], json::parse(R"({"@meta_reference": 7})"));
    EXPECT_THAT(faultsOf(result), IsEmpty());
}

TEST(LostStart, OfTheListOfTransitionsKeepsThem) {
    for (const char* clips : {R"("clipFrom": {"@meta_reference": 4}, "clipTo": {"@meta_reference": 7})",
                              R"("clipFrom": {"@meta_reference": 4}, "clipTo": null)",
                              R"("clipFrom": null, "clipTo": {"@meta_reference": 7})"}) {
        QByteArray bytes = filmWith("\"transitions\": [", lost);
        bytes.replace(R"("clipFrom": {"@meta_reference": 4}, "clipTo": {"@meta_reference": 7})", clips);
        const Recovered result = recovered(bytes);
        ASSERT_EQ(timelineOf(result)["transitions"].size(), 1U) << clips;
        EXPECT_EQ(timelineOf(result)["transitions"][0]["transition"],
                  json::parse(R"({"@meta_reference": 10})"));
    }
}

TEST(LostStart, OfAListDropsTheTransitionOfAClipThatIsLost) {
    QByteArray bytes = filmWith("\"transitions\": [", lost);
    bytes.replace(R"("clipFrom": {"@meta_reference": 4})", R"("clipFrom": {"@meta_reference": 99})");
    const Recovered result = recovered(bytes);
    EXPECT_THAT(timelineOf(result)["transitions"], IsEmpty());
    EXPECT_EQ(result.report.entriesDropped, 1U);
}

TEST(LostStart, OfAListDropsTheTransitionOfAClipOfNoTimeline) {
    QByteArray bytes = filmWith("\"transitions\": [", lost);
    bytes.replace(R"("sourceDuration": 4000, "timeline": {"@meta_reference": 3})",
                  R"("sourceDuration": 4000, "timeline": null)");
    const Recovered result = recovered(bytes);
    EXPECT_THAT(timelineOf(result)["transitions"], IsEmpty());
    EXPECT_EQ(result.report.entriesDropped, 1U);
}

TEST(LostStart, OfTheListOfItemsKeepsThem) {
    const Recovered result = recovered(filmWith("\"items\": [", lost));
    EXPECT_EQ(objectOf(result, "EditorCollection::UserObject")["items"],
              json::parse(R"([{"@meta_reference": 12}])"));
    EXPECT_THAT(faultsOf(result), IsEmpty());
}

TEST(LostStart, OfTheUsersCollectionMakesItAnewWithItsItems) {
    const Recovered result = recovered(
        filmWith(R"({"@meta": {"class_name": "EditorCollection::UserObject", "object_id": 11},)", lost));
    const json& collection = objectOf(result, "EditorCollection::UserObject");
    EXPECT_EQ(collection["items"], json::parse(R"([{"@meta_reference": 12}])"));
    EXPECT_EQ(objectOf(result, "Project::Content")["userCollection"]["@meta_reference"],
              collection["@meta"]["object_id"]);
    EXPECT_EQ(result.report.objectsMade, 1U);
}

TEST(LostStart, OfTheItemsAndTheirCollectionDropsThem) {
    const QByteArray start =
        R"("userCollection": {"@meta": {"class_name": "EditorCollection::UserObject", "object_id": 11},
    "items": [)";
    const Recovered result = recovered(filmWith(start, lost));
    EXPECT_EQ(objectOf(result, "Project::Content")["userCollection"], nullptr);
    EXPECT_EQ(result.report.entriesDropped, 1U);
}

TEST(LostStart, OfAListLeavesOutEntriesThatSayNotWhatTheyAre) {
    QByteArray bytes = filmWith("\"items\": [", lost);
    bytes.replace("\"Collection::Item\"", "\"Collection::Other\"");
    EXPECT_THAT(objectOf(recovered(bytes), "EditorCollection::UserObject")["items"], IsEmpty());
}

TEST(LostStart, OfATimelineMakesItAnewUnderTheIdThatItsTracksName) {
    const Recovered result =
        recovered(filmWith(R"({"@meta": {"class_name": "Timeline::Object", "object_id": 3},)", lost));
    EXPECT_EQ(timelineOf(result)["@meta"]["object_id"], 3);
    EXPECT_EQ(timelineOf(result)["name"], "Film");
    EXPECT_EQ(result.report.clipsInPlace, 2U);
    EXPECT_THAT(faultsOf(result), IsEmpty());
}

TEST(LostStart, OfATimelineWithoutItsMembersMakesItAnewForItsClips) {
    // Nothing is left of the timeline but the entries of its clips.
    const QByteArray start = R"({"@meta": {"class_name": "Timeline::Object", "object_id": 3},
    "clips": [)";
    const QByteArray bytes = filmWith(start, lost);
    const Recovered result = recovered(bytes.left(bytes.indexOf("\"frameRate\"")));
    EXPECT_EQ(timelineOf(result)["@meta"]["object_id"], 3);
    EXPECT_EQ(timelineOf(result)["width"], 1920);
    EXPECT_EQ(result.report.clipsInPlace, 2U);
    EXPECT_THAT(faultsOf(result), IsEmpty());
}

TEST(LostStart, OfATimelineWhoseTracksNameNoTimelineDropsItsMembers) {
    QByteArray bytes = filmWith(R"({"@meta": {"class_name": "Timeline::Object", "object_id": 3},)", lost);
    bytes.replace("\"timeline\": {\"@meta_reference\": 3}, \"type\": 16",
                  "\"timeline\": {\"@meta_reference\": 2}, \"type\": 16");
    const Recovered result = recovered(bytes);
    EXPECT_EQ(timelineOf(result)["name"], "");
    EXPECT_THAT(namesOf(result.report.clipsMoved), ElementsAre("Beach", "Boat"));
    EXPECT_EQ(objectAt(result, 2)["@meta"]["class_name"], "Project::Content");
}

// Lists and their entries

TEST(DamagedEntry, WithoutATimingIsReplacedByOneAtTheEnd) {
    for (const char* timing : {"null", R"({"@meta_reference": 99})", "5"}) {
        const Recovered result = recovered(cutFilmWith(
            R"({"@meta": {"class_name": "Timeline::ClipTiming", "object_id": 8},
       "duration": 2000, "timestamp": 4000, "track": {"@meta_reference": 6}})",
            timing));
        EXPECT_THAT(namesOf(result.report.clipsMoved), ElementsAre("Boat")) << timing;
        EXPECT_EQ(timelineOf(result)["clips"].size(), 2U);
        EXPECT_THAT(faultsOf(result), IsEmpty());
    }
}

TEST(DamagedEntry, WithoutATimeIsReplacedByOneAtTheEnd) {
    const Recovered result = recovered(cutFilmWith("\"timestamp\": 4000", "\"timestamp\": \"soon\""));
    EXPECT_THAT(namesOf(result.report.clipsMoved), ElementsAre("Boat"));
    EXPECT_EQ(timelineOf(result)["clips"].size(), 2U);
}

TEST(DamagedEntry, ThatIsANumberIsDropped) {
    const Recovered result = recovered(cutFilmWith("\"clips\": [", "\"clips\": [7,"));
    EXPECT_EQ(timelineOf(result)["clips"].size(), 2U);
    EXPECT_EQ(result.report.entriesDropped, 1U);
    EXPECT_EQ(result.report.clipsInPlace, 2U);
}

TEST(DamagedEntry, ThatLacksATimingIsReplacedInATimelineThatIsMadeAnew) {
    QByteArray bytes = filmWith(R"({"@meta": {"class_name": "Timeline::Object", "object_id": 3},)", lost);
    bytes.replace(R"({"@meta": {"class_name": "Timeline::ClipTiming", "object_id": 8},
       "duration": 2000, "timestamp": 4000, "track": {"@meta_reference": 6}})",
                  "null");
    const Recovered result = recovered(bytes);
    EXPECT_THAT(namesOf(result.report.clipsMoved), ElementsAre("Boat"));
    EXPECT_EQ(timelineOf(result)["clips"].size(), 2U);
    EXPECT_EQ(result.report.entriesDropped, 1U);
}

TEST(DamagedEntry, OfACutFileIsKeptIfItNamesItsClipAndItsTiming) {
    // The list has lost its start, and the last entry its end.
    QByteArray bytes = filmWith("\"clips\": [", lost);
    bytes = bytes.left(bytes.indexOf("}],\n    \"frameRate\""));
    const Recovered result = recovered(bytes);
    EXPECT_EQ(result.report.clipsInPlace, 2U);
    EXPECT_THAT(result.report.clipsMoved, IsEmpty());
}

// Objects that are no longer what their class is

TEST(DamagedObject, AClipWithoutATypeIsLost) {
    const Recovered result =
        recovered(cutFilmWith("\"timeline\": {\"@meta_reference\": 3}, \"type\": 1", "\"volume\": 100"));
    EXPECT_THAT(clipsOf(result), ElementsAre("Boat"));
    EXPECT_THAT(namesOf(result.report.clipsLost), ElementsAre("Beach"));
    EXPECT_EQ(result.report.objectsDropped, 1U);
    EXPECT_THAT(faultsOf(result), IsEmpty());
}

TEST(DamagedObject, ATrackGetsTheFieldsThatItLacks) {
    const Recovered result =
        recovered(cutFilmWith("\"hidden\": false, \"linked\": false,", "\"linked\": 5,"));
    const json& track = objectOf(result, "Timeline::Track");
    EXPECT_EQ(track["hidden"], false);
    EXPECT_EQ(track["linked"], false);
    EXPECT_EQ(track["gapless"], true);
    EXPECT_EQ(result.report.objectsClosed, 1U);
    EXPECT_EQ(result.report.clipsInPlace, 2U);
}

TEST(DamagedObject, ATimelineWithoutAListOfTracksGetsOneForATrackThatIsMade) {
    QByteArray bytes = cutFilmWith("\"tracks\": [{\"@meta_reference\": 6}]", "\"tracks\": null");
    bytes.replace("\"timestamp\": 4000, \"track\": {\"@meta_reference\": 6}",
                  "\"timestamp\": 4000, \"track\": {\"@meta_reference\": 99}");
    const Recovered result = recovered(bytes);
    EXPECT_EQ(objectAt(result, 99)["@meta"]["class_name"], "Timeline::Track");
    EXPECT_EQ(timelineOf(result)["tracks"], json::parse(R"([{"@meta_reference": 99}])"));
    EXPECT_THAT(faultsOf(result), IsEmpty());
}

TEST(DamagedObject, TwoClipsOnNoTrackComeToOne) {
    QByteArray bytes = cutFilmWith("\"timestamp\": 4000, \"track\": {\"@meta_reference\": 6}",
                                   "\"timestamp\": 4000, \"track\": null");
    const int start = bytes.indexOf("\"track\": {\"@meta\"");
    const int end = bytes.indexOf("\"used\": true}", start) + 13;
    bytes.replace(start, end - start, "\"track\": null");
    const Recovered result = recovered(bytes);
    const json& track = objectOf(result, "Timeline::Track");
    EXPECT_EQ(track["type"], 16); // the usual one of videos
    for (const unsigned long long timing : {5U, 8U})
        EXPECT_EQ(objectAt(result, timing)["track"]["@meta_reference"], track["@meta"]["object_id"]);
    EXPECT_EQ(result.report.clipsInPlace, 2U);
}

TEST(DamagedObject, ATrackWithATypeThatIsNoNumberGetsOne) {
    const Recovered result = recovered(cutFilmWith("\"type\": 16", "\"type\": \"main\""));
    EXPECT_EQ(objectOf(result, "Timeline::Track")["type"], 0);
}

// What leads to the timeline

TEST(LostRoot, AndAllElseButTheTimelineIsMadeAnew) {
    // Neither what is before the timeline nor what is behind it is there.
    const int start = film.indexOf(R"({"@meta": {"class_name": "Timeline::Object")");
    const int end = film.indexOf("\"width\": 1920}") + 14;
    const Recovered result = recovered(lost + film.mid(start, end - start));
    EXPECT_EQ(result.report.clipsInPlace, 2U);
    EXPECT_EQ(objectOf(result, "Project::PersistentObject")["content"]["@meta_reference"],
              objectOf(result, "Project::Content")["@meta"]["object_id"]);
    EXPECT_EQ(objectOf(result, "Project::Content")["timeline"], json::parse(R"({"@meta_reference": 3})"));
    EXPECT_THAT(objectOf(result, "ResourceTable::Object")["resource2fileInfo"], IsEmpty());
    EXPECT_THAT(faultsOf(result), IsEmpty());
}

TEST(LostRoot, WithItsContentStillThereLeadsToThat) {
    const Recovered result =
        recovered(cutFilmWith(R"({"@meta": {"class_name": "Project::PersistentObject", "object_id": 1},)",
                              R"({"@meta": {"class_name": "Note", "object_id": 1},)"));
    const json& root = objectOf(result, "Project::PersistentObject");
    EXPECT_EQ(root["content"], json::parse(R"({"@meta_reference": 2})"));
    EXPECT_EQ(root["resourceTable"], json::parse(R"({"@meta_reference": 13})"));
    EXPECT_EQ(result.report.clipsInPlace, 2U);
}

TEST(LostRoot, ALostResourceTableIsReplaced) {
    const QByteArray table = R"({"@meta": {"class_name": "ResourceTable::Object", "object_id": 13},
   "resource2fileInfo": []})";
    const Recovered result = recovered(cutFilmWith(table, R"({"@meta_reference": 13})"));
    EXPECT_EQ(objectOf(result, "Project::PersistentObject")["resourceTable"]["@meta_reference"],
              objectOf(result, "ResourceTable::Object")["@meta"]["object_id"]);
    EXPECT_THAT(faultsOf(result), IsEmpty());
}

// Text

TEST(DamagedJsonText, BeforeTheProjectIsIgnored) {
    for (const char* text : {"true", "garbage ", ",", ":", "}", "]", "\"text\" "}) {
        const Recovered result = recovered(text + film);
        EXPECT_THAT(clipsOf(result), ElementsAre("Beach", "Boat")) << text;
        EXPECT_EQ(result.report.clipsInPlace, 2U) << text;
        EXPECT_THAT(damagesIn(result), Contains(Damage::BrokenMarkup)) << text;
    }
}

TEST(DamagedJsonText, BehindTheProjectIsIgnored) {
    const Recovered result = recovered(film + "garbage ]}, \"text\": 5");
    EXPECT_THAT(clipsOf(result), ElementsAre("Beach", "Boat"));
    EXPECT_TRUE(result.report.isComplete());
}

TEST(DamagedJsonText, ManyLossesInsideOfObjectsDoNotMakeItTooDeep) {
    EXPECT_THAT(clipsOf(recovered(("{\"a\": {\"b\": 1, " + lost).repeated(1000) + film)),
                ElementsAre("Beach", "Boat"));
}

TEST(DamagedJsonText, EntriesOfAListAroundTheProjectAreNoMembers) {
    const QByteArray note = R"({"@meta": {"class_name": "Note", "object_id": 20}}, )";
    const QByteArray content = film.mid(film.indexOf(R"({"@meta": {"class_name": "Project::Content")"));
    const Recovered result = recovered('[' + note + content);
    EXPECT_THAT(clipsOf(result), ElementsAre("Beach", "Boat"));
    EXPECT_FALSE(result.document.json().envelope.contains("0"));
}

TEST(DamagedJsonText, AnEscapeThatJsonDoesNotHaveLosesItsValueOnly) {
    const Recovered result = recovered(filmWith("\"Film\"", "\"Fi\\qlm\""));
    EXPECT_THAT(damagesIn(result), ElementsAre(Damage::BrokenMarkup));
    EXPECT_EQ(result.report.clipsInPlace, 2U);
    EXPECT_EQ(timelineOf(result)["width"], 1920);
}

TEST(DamagedJsonText, AMissingValueLosesNoMemberBehindIt) {
    for (const char* text : {"\"height\": ,", "\"height\": :1080,", "\"height\": 1080 1080,", "1080,",
                             "\"height\": \"height\": 1080,", "\"height\" 1080,", ",", "\"height\": [1}],"}) {
        const Recovered result = recovered(filmWith("\"height\": 1080,", text));
        EXPECT_EQ(timelineOf(result)["width"], 1920) << text;
        EXPECT_EQ(result.report.clipsInPlace, 2U) << text;
        EXPECT_THAT(faultsOf(result), IsEmpty()) << text;
    }
}

TEST(DamagedJsonText, AMemberWithoutANameLosesNoOther) {
    const Recovered result = recovered(cutFilmWith("\"height\": 1080,", "\"\": 5, \"height\": 720,"));
    EXPECT_EQ(timelineOf(result)["height"], 720);
    EXPECT_EQ(timelineOf(result)["width"], 1920);
}

TEST(DamagedJsonText, AWideNumberKeepsItsDigits) {
    const Recovered result =
        recovered(cutFilmWith("\"uniqueId\": \"beach\"", "\"size\": 18446744073709551616"));
    EXPECT_TRUE(Reader::serialize(result.document.clone()).bytes.contains("18446744073709551616"));
}

TEST(DamagedJsonText, EmptyListsAndObjectsBehindALossAreRead) {
    for (const char* member :
         {"\"links\": []", "\"links\": [ ]", "\"name\": {}", "\"name\": { }", "\"links\": [[], {}]"}) {
        const Recovered result =
            recovered(filmWith("\"frameRate\": 25.0,", lost + member + ", \"frameRate\": 30.0,"));
        EXPECT_EQ(timelineOf(result)["frameRate"], 30.0) << member;
        EXPECT_EQ(result.report.clipsInPlace, 2U) << member;
    }
}

/// A loss that ends inside of a string: the text up to the string's end is no structure, whatever it looks like.
TEST(DamagedJsonText, TheRestOfAStringIsNotRead) {
    for (const char* rest : {"words", "5 {", ", }", "x, [", "true, 7 {", "1 2", "e: null"}) {
        const QByteArray bytes = filmWith("\"effects\": [], \"name\": \"Boat\"",
                                          "\"name\": \"Bo" + lost + rest + "\", \"effects\": []");
        const Recovered result = recovered(bytes);
        EXPECT_THAT(clipsOf(result), ElementsAre("Beach")) << rest;
        EXPECT_THAT(result.report.clipsLost, testing::SizeIs(1)) << rest;
        EXPECT_EQ(timelineOf(result)["width"], 1920) << rest;
    }
}

TEST(DamagedJsonText, TheRestOfAStringMayBeLostAgain) {
    const Recovered result =
        recovered(filmWith("\"name\": \"Boat\"", "\"name\": \"Bo" + lost + "words" + lost + "at\""));
    EXPECT_THAT(clipsOf(result), ElementsAre("Beach"));
    EXPECT_EQ(timelineOf(result)["width"], 1920);
}

TEST(DamagedJsonText, TheRestOfAStringMayBeTheEndOfTheFile) {
    const int end = film.indexOf("\"Boat\"") + 3;
    const Recovered result = recovered(film.left(end) + lost + "words");
    EXPECT_THAT(clipsOf(result), ElementsAre("Beach"));
}

TEST(DamagedJsonText, ALongStringBehindALossIsRead) {
    const QByteArray words(600, 'x');
    QByteArray bytes = filmWith("\"height\": 1080,", lost + "\"name\": \"" + words + "\",");
    const Recovered result = recovered(bytes.replace("\"name\": \"Film\",", ""));
    EXPECT_EQ(timelineOf(result)["name"], words.toStdString());
}

TEST(DamagedJsonText, ListsNoMoreFindingsThanItMay) {
    QByteArray losses;
    for (int number = 0; number < 1200; ++number)
        losses += "1," + lost;
    const Recovered result = recovered(losses + film);
    EXPECT_EQ(result.report.findings.size(), Reader::RecoveryReport::mostFindings);
    EXPECT_GE(result.report.findingsLeftOut, 200U);
    EXPECT_THAT(clipsOf(result), ElementsAre("Beach", "Boat"));
}

TEST(DamagedJsonText, AFindingSaysInWhichObjectItIs) {
    const Recovered inClip = recovered(filmWith("\"name\": \"Boat\"", lost));
    EXPECT_THAT(inClip.report.findings[0].text, HasSubstr("inside of the Timeline::Clip 7"));
    const Recovered before = recovered("? " + film);
    EXPECT_THAT(before.report.findings[0].text, HasSubstr("before the project"));
}

// Ids

TEST(DamagedIds, OfObjectsWithoutOneAreNewOnes) {
    const Recovered result = recovered(cutFilmWith(R"("class_name": "Transition::Fade", "object_id": 10)",
                                                   R"("class_name": "Transition::Fade")"));
    const unsigned long long id = objectOf(result, "Transition::Fade")["@meta"]["object_id"];
    EXPECT_EQ(id, 14U); // the first that is free
    EXPECT_EQ(timelineOf(result)["transitions"][0]["transition"]["@meta_reference"], id);
}

TEST(DamagedIds, ThatAreVeryGreatAreReplaced) {
    QByteArray bytes = cutFilmWith(R"("class_name": "Transition::Fade", "object_id": 10)",
                                   R"("class_name": "Transition::Fade", "object_id": 9223372036854775000)");
    const Recovered result = recovered(bytes);
    EXPECT_EQ(objectOf(result, "Transition::Fade")["@meta"]["object_id"], 14U);
}

TEST(DamagedIds, OfTwoObjectsThatAreEqualMakeOneOfThemNew) {
    const Recovered result = recovered(cutFilmWith(R"("class_name": "Transition::Fade", "object_id": 10)",
                                                   R"("class_name": "Transition::Fade", "object_id": 9)"));
    EXPECT_EQ(objectOf(result, "Timeline::Link")["@meta"]["object_id"], 9);
    EXPECT_EQ(objectOf(result, "Transition::Fade")["@meta"]["object_id"], 14);
}

TEST(DamagedIds, ADamagedTimelineWithoutOneIsMadeAnew) {
    const Recovered result = recovered(filmWith(R"("class_name": "Timeline::Object", "object_id": 3},)",
                                                R"("class_name": "Timeline::Object"},)" + lost));
    EXPECT_THAT(clipsOf(result), UnorderedElementsAre("Beach", "Boat"));
}

// Projects behind each other

TEST(SeveralJsonProjects, OneInsideOfAnotherIsTakenForACopy) {
    // The first one is cut off in its timeline.
    const QByteArray start = film.left(film.indexOf("\"frameRate\""));
    const Recovered result = recovered(start + "\"name\": " + film);
    EXPECT_THAT(damagesIn(result), Contains(Damage::SeveralDocuments));
    EXPECT_THAT(clipsOf(result), ElementsAre("Beach", "Boat"));
    EXPECT_EQ(timelineOf(result)["width"], 1920);
}

TEST(SeveralJsonProjects, ARootObjectWithoutItsEnvelopeBeginsOne) {
    const int start = film.indexOf("{\"@meta\"");
    const int end = film.indexOf("\"resource2fileInfo\": []}}") + 25;
    const QByteArray root = film.mid(start, end - start);
    const Recovered result = recovered("{\"other\": " + root + '}');
    EXPECT_EQ(result.report.clipsInPlace, 2U);
    EXPECT_EQ(result.document.json().root, 1U);
}

} // namespace
