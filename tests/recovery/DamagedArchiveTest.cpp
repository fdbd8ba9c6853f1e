// A small film as an archive with one damage at a time: what becomes of the object, the list or the text at that place.

#include "Recovery/Recovery.h"

#include "Archive/Xml.h"
#include "Reader/Contents.h"
#include "Reader/Verify.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDomDocument>

#include <stdexcept>
#include <string>
#include <vector>

using Reader::Damage;
using Reader::Recovered;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

using Names = std::vector<std::string>;

const QString name = QStringLiteral("film");

/// Bytes of a lost block.
const QByteArray lost(8, '\0');

/// "Beach" from 0 to 4 seconds, and "Boat" from 4 to 6 seconds. Recovery makes the predeclarations.
const QByteArray film = R"(<?xml version="1.0" encoding="UTF-8"?>
<Archive schemaVersion="62">
 <RootRef type="ObjectRef" value="2"/>
 <RootObject type="Predeclarator" objectId="1">
  <predeclarations type="Array" size="0"/>
 </RootObject>
 <RootObject type="Project::PersistentObject" objectId="2">
  <content type="Project::Content" objectId="3">
   <timeline type="ObjectRef" value="4"/>
   <userCollection type="ObjectRef" value="0"/>
   <portable type="bool" value="0"/>
  </content>
  <resourceTable type="ResourceTable::Object" objectId="13">
   <resource2fileInfo type="Array" size="0"/>
  </resourceTable>
 </RootObject>
 <RootObject type="Timeline::Object" objectId="4">
  <name type="String" value="Film"/>
  <frameRate type="double" value="25" binaryData="QDkAAAAAAAA="/>
  <width type="int32_t" value="1920"/>
  <height type="int32_t" value="1080"/>
  <clips type="Array" size="2">
   <Item type="Item" index="1">
    <Key type="ObjectRef" value="5"/>
    <Value type="Timeline::ClipTiming" objectId="6">
     <track type="ObjectRef" value="9"/>
     <timestamp type="int64_t" value="0"/>
     <duration type="int64_t" value="4000"/>
    </Value>
   </Item>
   <Item type="Item" index="2">
    <Key type="ObjectRef" value="7"/>
    <Value type="Timeline::ClipTiming" objectId="8">
     <track type="ObjectRef" value="9"/>
     <timestamp type="int64_t" value="4000"/>
     <duration type="int64_t" value="2000"/>
    </Value>
   </Item>
  </clips>
  <links type="Array" size="0"/>
  <tracks type="Array" size="1">
   <Item type="Item" index="1">
    <Data type="ObjectRef" value="9"/>
   </Item>
  </tracks>
  <transitions type="Array" size="0"/>
  <trackingLinks type="Array" size="0"/>
 </RootObject>
 <RootObject type="Timeline::Clip" objectId="5">
  <name type="String" value="Beach"/>
  <type type="int32_t" value="1"/>
  <sourceDuration type="int64_t" value="4000"/>
  <timeline type="ObjectRef" value="4"/>
 </RootObject>
 <RootObject type="Timeline::Clip" objectId="7">
  <name type="String" value="Boat"/>
  <type type="int32_t" value="1"/>
  <sourceDuration type="int64_t" value="2000"/>
  <timeline type="ObjectRef" value="4"/>
 </RootObject>
 <RootObject type="Timeline::Track" objectId="9">
  <type type="int32_t" value="16"/>
  <used type="bool" value="1"/>
  <muted type="bool" value="0"/>
  <hidden type="bool" value="0"/>
  <linked type="bool" value="0"/>
  <timeline type="ObjectRef" value="4"/>
  <gapless type="bool" value="1"/>
 </RootObject>
</Archive>
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
    return filmWith(from, to).replace("</Archive>\n", "");
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

/// The only root object of a class.
QDomElement objectOf(const Recovered& result, const char* className) {
    QDomElement found;
    for (QDomElement object = result.document.xml().documentElement().firstChildElement("RootObject");
         !object.isNull(); object = object.nextSiblingElement("RootObject")) {
        if (object.attribute("type") != QLatin1String(className))
            continue;
        if (!found.isNull())
            throw std::logic_error(std::string("several objects of ") + className);
        found = object;
    }
    if (found.isNull())
        throw std::logic_error(std::string("no ") + className);
    return found;
}

std::string valueOf(const QDomElement& object, const char* field) {
    return object.firstChildElement(field).attribute("value", "<missing>").toStdString();
}

int entriesIn(const Recovered& result, const char* list) {
    return objectOf(result, "Timeline::Object").firstChildElement(list).attribute("size").toInt();
}

const QByteArray secondTiming = R"(<Value type="Timeline::ClipTiming" objectId="8">
     <track type="ObjectRef" value="9"/>
     <timestamp type="int64_t" value="4000"/>
     <duration type="int64_t" value="2000"/>
    </Value>)";

TEST(DamagedArchive, AFileThatLostItsLastTagLosesNothingElse) {
    const Recovered result = recovered(cutFilmWith("Boat", "Ship"));
    EXPECT_THAT(damagesIn(result), ElementsAre(Damage::CutOff));
    EXPECT_EQ(result.report.clipsInPlace, 2U);
    EXPECT_EQ(result.report.objectsWhole, 5U);
    EXPECT_THAT(clipsOf(result), ElementsAre("Beach", "Ship"));
    EXPECT_THAT(faultsOf(result), IsEmpty());
}

// Entries

TEST(DamagedArchiveEntry, WithoutATimingIsReplacedByOneAtTheEnd) {
    for (const char* timing : {"", "<Value type=\"Timeline::ClipTiming\" objectId=\"8\"/>"}) {
        const Recovered result = recovered(cutFilmWith(secondTiming, timing));
        EXPECT_THAT(namesOf(result.report.clipsMoved), ElementsAre("Boat")) << timing;
        EXPECT_EQ(result.report.entriesDropped, 1U) << timing;
        EXPECT_EQ(entriesIn(result, "clips"), 2) << timing;
        EXPECT_THAT(faultsOf(result), IsEmpty()) << timing;
    }
}

TEST(DamagedArchiveEntry, WithATimeThatSaysNothingIsReplacedByOneAtTheEnd) {
    const Recovered result =
        recovered(cutFilmWith("value=\"4000\"/>\n     <duration type=\"int64_t\" value=\"2000\"",
                              "value=\"4000\"/>\n     <duration type=\"int64_t\" value=\"\""));
    EXPECT_THAT(namesOf(result.report.clipsMoved), ElementsAre("Boat"));
    EXPECT_EQ(entriesIn(result, "clips"), 2);
}

TEST(DamagedArchiveEntry, WithoutAClipIsDropped) {
    const Recovered result = recovered(cutFilmWith("<Key type=\"ObjectRef\" value=\"7\"/>", ""));
    EXPECT_THAT(namesOf(result.report.clipsMoved), ElementsAre("Boat"));
    EXPECT_EQ(result.report.entriesDropped, 1U);
    EXPECT_EQ(entriesIn(result, "clips"), 2);
}

TEST(DamagedArchiveEntry, WithoutATrackComesToTheTrackOfClipsLikeIt) {
    const Recovered result = recovered(cutFilmWith(
        "<track type=\"ObjectRef\" value=\"9\"/>\n     <timestamp type=\"int64_t\" value=\"4000\"",
        "<timestamp type=\"int64_t\" value=\"4000\""));
    EXPECT_EQ(result.report.clipsInPlace, 2U);
    const QDomElement second =
        objectOf(result, "Timeline::Object").firstChildElement("clips").lastChildElement("Item");
    EXPECT_EQ(valueOf(second.firstChildElement("Value"), "track"), "9");
}

TEST(DamagedArchiveEntry, OfAnotherTagIsDropped) {
    const Recovered result =
        recovered(filmWith("<Item type=\"Item\" index=\"2\">\n    <Key",
                           "<Entry type=\"Item\"/>" + lost + "<Item type=\"Item\"><Key"));
    EXPECT_EQ(entriesIn(result, "clips"), 2);
    EXPECT_FALSE(result.document.xml().toString().contains("<Entry"));
}

TEST(DamagedArchiveEntry, OfALinkInAnotherListComesToItsOwn) {
    // The end of one list and the start of the next one are lost.
    const QByteArray link = R"(<Item type="Item" index="1">
    <Key type="ObjectRef" value="7"/>
    <Value type="Timeline::Link" objectId="20"><master type="ObjectRef" value="5"/></Value>
   </Item>)";
    const Recovered result =
        recovered(filmWith("</clips>\n  <links type=\"Array\" size=\"0\"/>", lost + link + "</links>"));
    EXPECT_EQ(entriesIn(result, "links"), 1);
    EXPECT_EQ(entriesIn(result, "clips"), 2);
    EXPECT_EQ(result.report.clipsInPlace, 2U);
}

TEST(DamagedArchiveEntry, OfATransitionInAnotherListComesToItsOwn) {
    const QByteArray transition = R"(<Item type="Item" index="1">
    <Key type="ObjectRef" value="20"/>
    <Value type="Array" size="1">
     <Item type="Item" index="1"><First type="ObjectRef" value="5"/><Second type="ObjectRef" value="7"/></Item>
    </Value>
   </Item>)";
    QByteArray bytes =
        filmWith("</clips>\n  <links type=\"Array\" size=\"0\"/>", lost + transition + "</links>");
    bytes.replace("</Archive>", "<RootObject type=\"Transition::Fade\" objectId=\"20\"/></Archive>");
    const Recovered result = recovered(bytes);
    EXPECT_EQ(entriesIn(result, "transitions"), 1);
    EXPECT_EQ(entriesIn(result, "clips"), 2);
    EXPECT_THAT(faultsOf(result), IsEmpty());
}

TEST(DamagedArchiveEntry, ThatRefersToAnObjectOfAnotherClassIsDropped) {
    const Recovered result = recovered(filmWith("<Data type=\"ObjectRef\" value=\"9\"/>\n   </Item>",
                                                "<Data type=\"ObjectRef\" value=\"5\"/>\n   </Item>" + lost));
    EXPECT_EQ(entriesIn(result, "tracks"), 1); // that of the clips, which is listed anew
    EXPECT_EQ(result.report.entriesDropped, 1U);
    EXPECT_EQ(result.report.clipsInPlace, 2U);
}

TEST(DamagedArchiveEntry, CountsAreAddedWhereTheyAreMissing) {
    const Recovered result =
        recovered(cutFilmWith("<clips type=\"Array\" size=\"2\">", "<clips type=\"Array\">"));
    EXPECT_EQ(entriesIn(result, "clips"), 2);
    EXPECT_EQ(result.report.clipsInPlace, 2U);
}

// Objects

TEST(DamagedArchiveObject, ATrackGetsTheFieldsThatItLacks) {
    const Recovered result = recovered(
        cutFilmWith("<muted type=\"bool\" value=\"0\"/>\n  <hidden type=\"bool\" value=\"0\"/>", ""));
    const QDomElement track = objectOf(result, "Timeline::Track");
    EXPECT_EQ(valueOf(track, "muted"), "0");
    EXPECT_EQ(valueOf(track, "hidden"), "0");
    EXPECT_EQ(valueOf(track, "type"), "16");
    EXPECT_EQ(result.report.objectsClosed, 1U);
}

TEST(DamagedArchiveObject, AClipWithoutATypeIsLost) {
    const Recovered result = recovered(
        cutFilmWith("value=\"Boat\"/>\n  <type type=\"int32_t\" value=\"1\"/>", "value=\"Boat\"/>"));
    EXPECT_THAT(clipsOf(result), ElementsAre("Beach"));
    EXPECT_THAT(namesOf(result.report.clipsLost), ElementsAre("Boat"));
    EXPECT_THAT(faultsOf(result), IsEmpty());
}

TEST(DamagedArchiveObject, AnIdThatIsNoNumberIsNone) {
    const Recovered result = recovered(
        cutFilmWith("type=\"Timeline::Clip\" objectId=\"7\"", "type=\"Timeline::Clip\" objectId=\"7x\""));
    EXPECT_THAT(result.report.clipsLost, SizeIs(1));
    EXPECT_EQ(result.report.clipsInPlace, 1U);
}

TEST(DamagedArchiveObject, NewIdsDoNotFollowOneThatIsVeryGreat) {
    const QByteArray great = "9223372036854775807";
    const Recovered result = recovered(cutFilmWith("<links type=\"Array\" size=\"0\"/>",
                                                   "<extra type=\"ObjectRef\" value=\"" + great + "\"/>"));
    // 14 is the first id that is free: all made objects are records of the predeclarations.
    const QDomElement record =
        objectOf(result, "Predeclarator").firstChildElement("predeclarations").firstChildElement("Item");
    EXPECT_EQ(record.firstChildElement("Data").attribute("objectId"), "14");
}

TEST(DamagedArchiveObject, AnEmbeddedObjectWithAUsedIdGetsANewOne) {
    // The timing of the second clip has the id of the first clip. A part of a base class has the id of its object.
    QByteArray bytes =
        cutFilmWith("objectId=\"8\">", "objectId=\"5\"><BaseOfObject type=\"Base\" objectId=\"5\"/>");
    const Recovered result = recovered(bytes);
    const QDomElement timing = objectOf(result, "Timeline::Object")
                                   .firstChildElement("clips")
                                   .lastChildElement("Item")
                                   .firstChildElement("Value");
    EXPECT_EQ(timing.attribute("objectId"), "14");
    EXPECT_EQ(timing.firstChildElement("BaseOfObject").attribute("objectId"), "14");
    EXPECT_EQ(objectOf(result, "Timeline::Track").attribute("objectId"), "9");
    EXPECT_EQ(result.report.clipsInPlace, 2U);
    EXPECT_THAT(faultsOf(result), IsEmpty());
}

TEST(DamagedArchiveObject, ASecondOneOfTheSameIdIsAPartOfAnotherCopy) {
    const QByteArray track =
        R"(<RootObject type="Timeline::Track" objectId="9"><type type="int32_t" value="48"/></RootObject>)";
    const Recovered result = recovered(cutFilmWith("</Archive>", track));
    EXPECT_EQ(valueOf(objectOf(result, "Timeline::Track"), "type"), "16");
}

TEST(DamagedArchiveObject, ARootOfAnotherClassIsReplaced) {
    const Recovered result = recovered(cutFilmWith("<RootRef type=\"ObjectRef\" value=\"2\"/>",
                                                   "<RootRef type=\"ObjectRef\" value=\"9\"/>"));
    EXPECT_EQ(result.document.xml().documentElement().firstChildElement("RootRef").attribute("value"), "2");
    EXPECT_EQ(result.report.clipsInPlace, 2U);
}

TEST(DamagedArchiveObject, ASecondReferenceToTheRootIsDropped) {
    const Recovered result = recovered(
        cutFilmWith("<RootRef type=\"ObjectRef\" value=\"2\"/>",
                    "<RootRef type=\"ObjectRef\" value=\"2\"/><RootRef type=\"ObjectRef\" value=\"9\"/>"));
    const QDomElement root = result.document.xml().documentElement().firstChildElement("RootRef");
    EXPECT_EQ(root.attribute("value"), "2");
    EXPECT_TRUE(root.nextSiblingElement("RootRef").isNull());
}

TEST(DamagedArchiveObject, AParentThatIsLostIsReplacedInItsRecord) {
    const QByteArray record = R"(<predeclarations type="Array" size="1"><Item type="Item" index="1">
     <Data type="Predeclare" objectId="30"><typeName type="String" value="Timeline::Clip"/>
     <oid type="ObjectRef" value="5"/><poid type="ObjectRef" value="77"/><refs type="Array" size="0"/></Data>
     </Item></predeclarations>)";
    const Recovered result = recovered(cutFilmWith("<predeclarations type=\"Array\" size=\"0\"/>", record));
    const QDomElement data = objectOf(result, "Predeclarator")
                                 .firstChildElement("predeclarations")
                                 .firstChildElement("Item")
                                 .firstChildElement("Data");
    EXPECT_EQ(data.attribute("objectId"), "30");
    EXPECT_EQ(valueOf(data, "poid"), "0"); // a root object has none
    EXPECT_THAT(faultsOf(result), IsEmpty());
}

TEST(DamagedArchiveObject, TwoRecordsOfOneIdGetTwo) {
    const auto record = [](const char* id) {
        return QByteArray("<Item type=\"Item\" index=\"1\"><Data type=\"Predeclare\" objectId=\"30\">") +
               "<typeName type=\"String\" value=\"Timeline::Clip\"/><oid type=\"ObjectRef\" value=\"" + id +
               "\"/><poid type=\"ObjectRef\" value=\"0\"/><refs type=\"Array\" size=\"0\"/></Data></Item>";
    };
    const Recovered result = recovered(cutFilmWith("<predeclarations type=\"Array\" size=\"0\"/>",
                                                   "<predeclarations type=\"Array\" size=\"2\">" +
                                                       record("5") + record("7") + "</predeclarations>"));
    const QDomElement first =
        objectOf(result, "Predeclarator").firstChildElement("predeclarations").firstChildElement("Item");
    EXPECT_EQ(first.firstChildElement("Data").attribute("objectId"), "30");
    EXPECT_NE(first.nextSiblingElement("Item").firstChildElement("Data").attribute("objectId"), "30");
    EXPECT_THAT(faultsOf(result), IsEmpty());
}

// Text and markup

TEST(DamagedMarkup, CommentsAreSkipped) {
    const Recovered result = recovered(cutFilmWith("<RootRef", "<!-- a comment with a - in it --><RootRef"));
    EXPECT_THAT(damagesIn(result), ElementsAre(Damage::CutOff));
    EXPECT_EQ(result.report.clipsInPlace, 2U);
}

TEST(DamagedMarkup, ACommentOrAnInstructionWithoutItsEndLosesTheTextUpToTheNextTag) {
    for (const char* start : {"<!-- a comment ", "<?instruction "}) {
        const Recovered result = recovered(filmWith("<RootRef", QByteArray(start) + "<RootRef"));
        EXPECT_THAT(damagesIn(result), ElementsAre(Damage::BrokenMarkup)) << start;
        EXPECT_EQ(result.report.clipsInPlace, 2U) << start;
    }
}

TEST(DamagedMarkup, ACommentThatIsCutOffIsTheEnd) {
    const Recovered result = recovered(film.left(film.indexOf("</Archive>")) + "<!-- a comment");
    EXPECT_THAT(damagesIn(result), ElementsAre(Damage::CutOff));
    EXPECT_EQ(result.report.clipsInPlace, 2U);
}

TEST(DamagedMarkup, TextInAnElementIsKept) {
    const Recovered result = recovered(cutFilmWith("<name type=\"String\" value=\"Film\"/>",
                                                   "<name type=\"String\" value=\"Film\">a &lt; b</name>"));
    EXPECT_EQ(objectOf(result, "Timeline::Object").firstChildElement("name").text().trimmed(), "a < b");
    EXPECT_EQ(result.report.clipsInPlace, 2U);
}

TEST(DamagedMarkup, TextThatXmlForbidsIsNoXml) {
    for (const char* text : {"a & b", "a ]]> b", "&nbsp;"}) {
        const Recovered result =
            recovered(filmWith("value=\"Film\"/>", QByteArray("value=\"Film\">") + text + "</name>"));
        EXPECT_THAT(damagesIn(result), ElementsAre(Damage::BrokenMarkup)) << text;
        EXPECT_EQ(result.report.clipsInPlace, 2U) << text;
    }
}

/// Every name that the reader could not read as XML would make the result unreadable.
TEST(DamagedMarkup, EntitiesThatXmlDoesNotKnowLoseTheirTag) {
    for (const char* entity :
         {"&", "&;", "&nbsp;", "&amp", "&#;", "&#x;", "&#xG1;", "&#4A;", "&#0;", "&#x1F;", "&#xD800;",
          "&#xDFFF;", "&#xFFFE;", "&#xFFFF;", "&#x110000;", "&#1234567890;"}) {
        const Recovered result =
            recovered(filmWith("value=\"Boat\"", QByteArray("value=\"Boat") + entity + '"'));
        EXPECT_THAT(damagesIn(result), ElementsAre(Damage::BrokenMarkup)) << entity;
        EXPECT_THAT(clipsOf(result), ElementsAre("Beach")) << entity;
    }
}

TEST(DamagedMarkup, EntitiesOfXmlAreKept) {
    const QByteArray entities = "&amp;&lt;&gt;&quot;&apos;&#65;&#x42;&#xe4;&#xD7FF;&#xE000;&#x10FFFF;&#9;";
    const Recovered result = recovered(cutFilmWith("value=\"Boat\"", "value=\"" + entities + '"'));
    EXPECT_THAT(damagesIn(result), ElementsAre(Damage::CutOff));
    ASSERT_EQ(clipsOf(result).size(), 2U);
    EXPECT_EQ(clipsOf(result)[1], "&<>\"'AB\xC3\xA4\xED\x9F\xBF\xEE\x80\x80\xF4\x8F\xBF\xBF\t");
}

TEST(DamagedMarkup, TagsThatAreNoXmlAreLost) {
    for (const char* tag : {"<name type=\"String\" type=\"String\" value=\"Film\"/>",
                            "<name type=\"String\" value=Film/>", "<name type=\"String\"value=\"Film\"/>",
                            "<name type value=\"Film\"/>", "<name type=\"String\" / value=\"Film\">",
                            "<1name/>", "</name type=\"String\">", "</name/>", "<name type=\"<\"/>"}) {
        const Recovered result = recovered(filmWith("<name type=\"String\" value=\"Film\"/>", tag));
        EXPECT_THAT(damagesIn(result), Contains(Damage::BrokenMarkup)) << tag;
        EXPECT_EQ(valueOf(objectOf(result, "Timeline::Object"), "name"), "") << tag;
        EXPECT_EQ(result.report.clipsInPlace, 2U) << tag;
        EXPECT_THAT(faultsOf(result), IsEmpty()) << tag;
    }
}

TEST(DamagedMarkup, AnEndOfAnotherElementIsALoss) {
    const Recovered result = recovered(filmWith("<frameRate", "</clips><frameRate"));
    EXPECT_THAT(damagesIn(result), ElementsAre(Damage::BrokenMarkup));
    EXPECT_EQ(result.report.clipsInPlace, 2U);
}

TEST(DamagedMarkup, CharactersOfNamesMayBeDigitsAndMarks) {
    const Recovered result = recovered(cutFilmWith(
        "<links type=\"Array\" size=\"0\"/>", "<_Name-1.b:c A=\"1\"/><links type=\"Array\" size=\"0\"/>"));
    EXPECT_THAT(damagesIn(result), ElementsAre(Damage::CutOff));
    EXPECT_EQ(result.report.clipsInPlace, 2U);
}

TEST(DamagedMarkup, AnArchiveInsideOfAnotherIsACopy) {
    const QByteArray start = film.left(film.indexOf("<frameRate"));
    const Recovered result = recovered(start + film.mid(film.indexOf("<Archive")));
    EXPECT_THAT(damagesIn(result), Contains(Damage::SeveralDocuments));
    EXPECT_EQ(result.report.clipsInPlace, 2U);
}

TEST(DamagedMarkup, AnEmptyArchiveIsNotTakenForTheProject) {
    const Recovered result =
        recovered("<Archive schemaVersion=\"62\"/>" + film.mid(film.indexOf("<Archive")));
    EXPECT_THAT(damagesIn(result), Contains(Damage::SeveralDocuments));
    EXPECT_THAT(clipsOf(result), ElementsAre("Beach", "Boat"));
}

TEST(DamagedMarkup, TagsBehindTheArchiveAreIgnored) {
    const Recovered result = recovered(film + "<name type=\"String\"/></RootObject>" + lost);
    EXPECT_TRUE(result.report.isComplete());
    EXPECT_THAT(clipsOf(result), ElementsAre("Beach", "Boat"));
}

// The version of the caller

TEST(RecoveredVersion, OfTheCallerThatTheFormCannotHaveIsNotTaken) {
    const auto result = Reader::recover(film, name, 77);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->report.version, 62);
    EXPECT_THAT(damagesIn(*result), ElementsAre(Damage::Version));
}

} // namespace
