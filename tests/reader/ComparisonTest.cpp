// What is different between two projects: one change at a time, and what makes no difference.

#include "Reader/Comparison.h"

#include "Reader/Migration.h"
#include "support/Holiday.h"
#include "support/ProgramTest.h"

#include <gtest/gtest.h>

#include <functional>
#include <utility>

using nlohmann::json;
using Reader::Difference;
using Kind = Reader::Difference::Kind;

namespace {

Reader::ComparedProject projectOf(const QByteArray& bytes, const QString& folder = {}) {
    return Reader::readForComparison(Reader::parse(bytes, QStringLiteral("film")), folder);
}

std::vector<Difference> differences(const QByteArray& before, const QByteArray& after) {
    return Reader::compare(projectOf(before), projectOf(after));
}

/// "clip-moved Beach" or "object-changed Timeline::Object frameRate", to be read in failures.
std::vector<std::string> texts(const std::vector<Difference>& differences) {
    std::vector<std::string> result;
    result.reserve(differences.size());
    for (const Difference& difference : differences)
        result.push_back(std::string(nameOf(difference.kind)) + ' ' +
                         (difference.clip ? difference.clip->name : difference.className) +
                         (difference.field.empty() ? "" : ' ' + difference.field));
    return result;
}

using Texts = std::vector<std::string>;

// The sample in JSON, to be edited.

json holiday() {
    return json::parse(Tests::readFile(Tests::samplesFolder() / "holiday-v63.json"));
}

QByteArray bytesOf(const json& document) {
    return QByteArray::fromStdString(document.dump());
}

/// Calls `visit` for each class object of a document.
void eachObject(json& value, const std::function<void(json& object)>& visit) {
    if (value.is_object() && value.contains("@meta"))
        visit(value);
    if (value.is_structured()) {
        for (json& member : value)
            eachObject(member, visit);
    }
}

json& objectWith(json& document, const std::string& className, const std::string& field,
                 const json& content) {
    json* found = nullptr;
    eachObject(document["data"], [&](json& object) {
        if (object["@meta"]["class_name"] == className && object.value(field, json()) == content && !found)
            found = &object;
    });
    if (!found)
        throw std::runtime_error("no " + className);
    return *found;
}

json& clipNamed(json& document, const std::string& name) {
    return objectWith(document, "Timeline::Clip", "name", name);
}

json& timeline(json& document) {
    return objectWith(document, "Timeline::Object", "name", "Holiday");
}

json& entryOf(json& document, const std::string& name) {
    for (json& entry : timeline(document)["clips"]) {
        if (entry["clip"].value("name", "") == name)
            return entry;
    }
    throw std::runtime_error("no entry of " + name);
}

/// What one edit of the sample gives.
std::vector<Difference> afterEdit(const std::function<void(json& document)>& edit) {
    json edited = holiday();
    edit(edited);
    return differences(bytesOf(holiday()), bytesOf(edited));
}

// No difference

class ComparisonOfSamples : public testing::TestWithParam<Tests::Sample> {};

TEST_P(ComparisonOfSamples, AProjectIsEqualToItself) {
    const QByteArray bytes = Tests::bytesOf(GetParam());
    EXPECT_EQ(texts(differences(bytes, bytes)), Texts{});
}

TEST_P(ComparisonOfSamples, ARenumberedResultIsEqual) {
    const QByteArray bytes = Tests::migrated(Tests::bytesOf(GetParam())).bytes;
    EXPECT_EQ(texts(differences(bytes, bytesOf(Tests::renumbered(bytes)))), Texts{});
}

INSTANTIATE_TEST_SUITE_P(Samples, ComparisonOfSamples, testing::ValuesIn(Tests::samples), Tests::sampleName);

TEST(Comparison, NumbersOfIdsMakeNoDifference) {
    // All ids change their order, too.
    json renumbered = holiday();
    const std::function<void(json&)> renumber = [&](json& value) {
        if (!value.is_structured())
            return;
        for (auto it = value.begin(); it != value.end(); ++it) {
            if (value.is_object() && (it.key() == "object_id" || it.key() == "@meta_reference"))
                *it = 5000 - it->get<int>();
            else
                renumber(*it);
        }
    };
    renumber(renumbered);
    EXPECT_EQ(texts(differences(bytesOf(holiday()), bytesOf(renumbered))), Texts{});
}

TEST(Comparison, WholeAndFloatingNumbersOfOneValueAreEqual) {
    EXPECT_EQ(texts(afterEdit([](json& document) { clipNamed(document, "Beach")["volume"] = 100.0; })),
              Texts{});
    EXPECT_EQ(texts(afterEdit([](json& document) { clipNamed(document, "Beach")["volume"] = 100.5; })),
              Texts{"clip-changed Beach volume"});
}

TEST(Comparison, TheOrderOfKeysMakesNoDifference) {
    const auto document = [](const char* fields) {
        return QByteArray(R"({"version":"1.0","data":{"@meta":{"class_name":"Note","object_id":2},)") +
               fields + "}}";
    };
    EXPECT_EQ(
        texts(differences(document(R"("a":1,"b":{"x":1,"y":2})"), document(R"("b":{"y":2,"x":1},"a":1)"))),
        Texts{});
    EXPECT_EQ(texts(differences(document(R"("a":1)"), document(R"("a":2)"))), Texts{"object-changed Note a"});
    EXPECT_EQ(texts(differences(document(R"("a":1)"), document(R"("a":"1")"))),
              Texts{"object-changed Note a"});
    EXPECT_EQ(texts(differences(document(R"("a":1)"), document(R"("b":1)"))),
              (Texts{"object-changed Note a", "object-changed Note b"}));
}

TEST(Comparison, TheOrderOfClipsInTheirListMakesNoDifference) {
    const QByteArray second =
        "<Item type='Item' index='2'><Key type='ObjectRef' value='6'/><Value "
        "type='Timeline::ClipTiming' objectId='7'><timestamp type='int64_t' value='40'/></Value></Item>";
    const QByteArray clip =
        "<RootObject type='Timeline::Clip' objectId='6'><name type='String' value='Pier'/></RootObject>";
    QByteArray behind = Tests::archive(clip);
    behind.replace("</Item></clips>", "</Item>" + second + "</clips>");
    QByteArray before = Tests::archive(clip);
    before.replace("<clips type='Array' size='1'>", "<clips type='Array' size='1'>" + second);
    EXPECT_EQ(texts(differences(behind, before)), Texts{});
}

TEST(Comparison, WhatNothingRefersToMakesNoDifference) {
    const QByteArray loose = "<RootObject type='Effect::Blur' objectId='70'/>";
    EXPECT_EQ(texts(differences(Tests::archive(), Tests::archive(loose))), Texts{});
}

TEST(Comparison, AnObjectThatIsSharedInOneDocumentOnlyIsComparedByWhatItHolds) {
    const auto document = [](const char* second) {
        return QByteArray(R"({"version":"1.0","data":{"@meta":{"class_name":"Note","object_id":2},"a":
            {"@meta":{"class_name":"Pen","object_id":3},"color":1},"b":)") +
               second + "}}";
    };
    const QByteArray shared = document(R"({"@meta_reference":3})");
    EXPECT_EQ(
        texts(differences(shared, document(R"({"@meta":{"class_name":"Pen","object_id":4},"color":1})"))),
        Texts{});
    EXPECT_EQ(
        texts(differences(shared, document(R"({"@meta":{"class_name":"Pen","object_id":4},"color":2})"))),
        Texts{"object-changed Pen color"});
}

// Objects, lists and links, in a project of a few notes

/// A project whose root object is a note with these fields.
QByteArray note(const std::string& fields) {
    return QByteArray::fromStdString(
        R"({"version":"1.0","data":{"@meta":{"class_name":"Note","object_id":2},)" + fields + "}}");
}

std::string object(const char* className, int id, const std::string& fields = {}) {
    return R"({"@meta":{"class_name":")" + std::string(className) + R"(","object_id":)" + std::to_string(id) +
           '}' + (fields.empty() ? "" : ',' + fields) + '}';
}

std::string linkTo(int id) {
    return R"({"@meta_reference":)" + std::to_string(id) + '}';
}

TEST(ComparisonOfObjects, AnObjectThatIsSharedInOneDocumentIsReportedOnce) {
    const QByteArray before =
        note(R"("a":)" + object("Pen", 3, R"("color":1)") + R"(,"b":)" + linkTo(3) + R"(,"c":)" + linkTo(3));
    const QByteArray after = note(R"("a":)" + object("Pen", 3, R"("color":1)") + R"(,"b":)" +
                                  object("Pen", 4, R"("color":2)") + R"(,"c":)" + linkTo(4));
    EXPECT_EQ(texts(differences(before, after)), Texts{"object-changed Pen color"});
}

TEST(ComparisonOfObjects, ThePartsOfTimelinesAreNeverSharedInOneDocument) {
    const QByteArray before = note(R"("a":)" + object("Timeline::Marker", 3) + R"(,"b":)" + linkTo(3));
    const QByteArray after =
        note(R"("a":)" + object("Timeline::Marker", 3) + R"(,"b":)" + object("Timeline::Marker", 4));
    EXPECT_EQ(texts(differences(before, after)), Texts{"object-changed Note b"});
}

TEST(ComparisonOfObjects, AnotherClassIsADifference) {
    const auto found = differences(note(R"("a":)" + object("Pen", 3)), note(R"("a":)" + object("Brush", 3)));
    ASSERT_EQ(texts(found), Texts{"object-changed Note a"});
    EXPECT_EQ(found[0].before["class"], "Pen");
    EXPECT_EQ(found[0].after["class"], "Brush");
}

TEST(ComparisonOfObjects, AnotherClassOfTheRootIsADifference) {
    QByteArray after = note(R"("a":1)");
    after.replace("Note", "Letter");
    const auto found = differences(note(R"("a":1)"), after);
    ASSERT_EQ(texts(found), Texts{"object-changed Note class"});
    EXPECT_EQ(found[0].before, "Note");
    EXPECT_EQ(found[0].after, "Letter");
}

TEST(ComparisonOfObjects, LinksThatLeadNowhereAreEqual) {
    const QByteArray lost = note(R"("a":)" + linkTo(90));
    EXPECT_EQ(texts(differences(lost, note(R"("a":)" + linkTo(91)))), Texts{});
    const QByteArray whole = note(R"("a":)" + object("Pen", 3));
    EXPECT_EQ(texts(differences(whole, lost)), Texts{"object-changed Note a"});
    EXPECT_EQ(texts(differences(lost, whole)), Texts{"object-changed Note a"});
    EXPECT_EQ(
        texts(differences(note(R"("list":[)" + linkTo(90) + ']'), note(R"("list":[)" + linkTo(91) + ']'))),
        Texts{});
}

TEST(ComparisonOfObjects, ALinkAndAValueAreDifferent) {
    const QByteArray link = note(R"("a":)" + object("Pen", 3));
    for (const char* value : {"null", "5", "{}", "[]", R"({"color":1})"}) {
        const QByteArray other = note(R"("a":)" + std::string(value));
        EXPECT_EQ(texts(differences(link, other)), Texts{"object-changed Note a"}) << value;
        EXPECT_EQ(texts(differences(other, link)), Texts{"object-changed Note a"}) << value;
    }
}

TEST(ComparisonOfObjects, NameTheObjectThatChanged) {
    const auto named = differences(note(R"("name":"first","a":1)"), note(R"("name":"first","a":2)"));
    ASSERT_EQ(named.size(), 1U);
    EXPECT_EQ(named[0].name, "first");
    const auto numbered = differences(note(R"("name":5,"a":1)"), note(R"("name":5,"a":2)"));
    ASSERT_EQ(numbered.size(), 1U);
    EXPECT_EQ(numbered[0].name, "");
}

TEST(ComparisonOfLists, AnObjectIsAddedOrRemoved) {
    const QByteArray one = note(R"("list":[)" + object("Pen", 3, R"("color":1)") + ']');
    const QByteArray two =
        note(R"("list":[)" + object("Pen", 3, R"("color":1)") + ',' + object("Pen", 4, R"("color":2)") + ']');
    const auto added = differences(one, two);
    ASSERT_EQ(texts(added), Texts{"object-changed Note list/1"});
    EXPECT_EQ(added[0].before, json());
    EXPECT_EQ(added[0].after["class"], "Pen");
    const auto removed = differences(two, one);
    ASSERT_EQ(texts(removed), Texts{"object-changed Note list/1"});
    EXPECT_EQ(removed[0].after, json());
    EXPECT_EQ(texts(differences(note(R"("list":[])"), one)), Texts{"object-changed Note list/0"});
}

TEST(ComparisonOfLists, AnotherOrderIsOneDifference) {
    const std::string red = object("Pen", 3, R"("color":1)");
    const std::string blue = object("Pen", 4, R"("color":2)");
    const auto found = differences(note(R"("list":[)" + red + ',' + blue + ']'),
                                   note(R"("list":[)" + blue + ',' + red + ']'));
    ASSERT_EQ(texts(found), Texts{"object-changed Note list"});
    EXPECT_EQ(found[0].before, "in one order");
    EXPECT_EQ(found[0].after, "in another order");
}

TEST(ComparisonOfLists, AnObjectOfAnotherClassIsAnotherOne) {
    const auto found = differences(note(R"("list":[)" + object("Pen", 3) + ']'),
                                   note(R"("list":[)" + object("Brush", 3) + ']'));
    ASSERT_EQ(texts(found), (Texts{"object-changed Note list/0", "object-changed Note list/0"}));
    EXPECT_EQ(found[0].after, json()); // the pen is removed
    EXPECT_EQ(found[1].before, json());
}

TEST(ComparisonOfLists, ValuesAreComparedInTheirOrder) {
    EXPECT_EQ(texts(differences(note(R"("list":[1,2])"), note(R"("list":[1,3])"))),
              Texts{"object-changed Note list/1"});
    const auto longer = differences(note(R"("list":[1,2])"), note(R"("list":[1,2,3])"));
    ASSERT_EQ(texts(longer), Texts{"object-changed Note list"});
    EXPECT_EQ(longer[0].after, json({1, 2, 3}));
}

/// Deep values are compared level by level down to a path of 17 names, and as a whole below it.
TEST(ComparisonOfLists, DeepValuesAreOneDifference) {
    const auto nested = [](const char* open, const char* value, const char* close) {
        std::string text = value;
        for (int level = 0; level < 30; ++level)
            text.insert(0, open).append(close);
        return note(R"("a":)" + text);
    };
    for (const auto& [open, close] : {std::pair(R"({"b":)", "}"), std::pair("[", "]")}) {
        EXPECT_EQ(texts(differences(nested(open, "1", close), nested(open, "1", close))), Texts{});
        const auto found = differences(nested(open, "1", close), nested(open, "2", close));
        ASSERT_EQ(found.size(), 1U);
        EXPECT_EQ(std::count(found[0].field.begin(), found[0].field.end(), '/'), 16);
    }
}

// One edit at a time

TEST(Comparison, ARenamedClip) {
    const auto found = afterEdit([](json& document) { clipNamed(document, "Beach")["name"] = "Strand"; });
    ASSERT_EQ(texts(found), Texts{"clip-renamed Beach"});
    EXPECT_EQ(found[0].before, "Beach");
    EXPECT_EQ(found[0].after, "Strand");
    EXPECT_EQ(found[0].idBefore, found[0].idAfter);
    EXPECT_EQ(found[0].clip->start, 4000);
}

TEST(Comparison, AMovedClip) {
    const auto found =
        afterEdit([](json& document) { entryOf(document, "Song")["timing"]["timestamp"] = 500; });
    ASSERT_EQ(texts(found), Texts{"clip-moved Song"});
    EXPECT_EQ(found[0].before["start"], 0);
    EXPECT_EQ(found[0].after["start"], 500);
    EXPECT_EQ(found[0].after["track"], "audio");
    EXPECT_EQ(texts(afterEdit([](json& document) { entryOf(document, "Song")["timing"]["trackLevel"] = 2; })),
              Texts{"clip-moved Song"});
}

TEST(Comparison, AClipOnAnotherTrack) {
    const auto found = afterEdit([](json& document) {
        const int titles = objectWith(document, "Timeline::Track", "type", 80)["@meta"]["object_id"];
        entryOf(document, "Harbour")["timing"]["track"] = {{"@meta_reference", titles}};
    });
    ASSERT_EQ(texts(found), Texts{"clip-moved Harbour"});
    EXPECT_EQ(found[0].before["track"], "main");
    EXPECT_EQ(found[0].after["track"], "titles");
}

TEST(Comparison, ATrimmedClip) {
    const auto found = afterEdit([](json& document) {
        entryOf(document, "Boat")["timing"]["duration"] = 11000;
        entryOf(document, "Boat")["timing"]["sourcePosition"] = 250;
    });
    ASSERT_EQ(texts(found), Texts{"clip-trimmed Boat"});
    EXPECT_EQ(found[0].before, json::parse(R"({"duration": 12000, "sourceStart": 0})"));
    EXPECT_EQ(found[0].after, json::parse(R"({"duration": 11000, "sourceStart": 250})"));
}

TEST(Comparison, ARemovedAndAnAddedClip) {
    json without = holiday();
    auto& clips = timeline(without)["clips"];
    const auto song = std::find_if(clips.begin(), clips.end(), [](const json& entry) {
        return entry["clip"].value("name", "") == "Song";
    });
    ASSERT_NE(song, clips.end());
    ASSERT_EQ(song + 1, clips.end()); // nothing behind it refers to its objects
    // The track stands in full in the clip's timing, and in the list of tracks as a link.
    const json track = (*song)["timing"]["track"];
    clips.erase(song);
    for (json& item : timeline(without)["tracks"]) {
        if (item.value("@meta_reference", json()) == track["@meta"]["object_id"])
            item = track;
    }
    const auto removed = differences(bytesOf(holiday()), bytesOf(without));
    ASSERT_EQ(texts(removed), Texts{"clip-removed Song"});
    EXPECT_NE(removed[0].idBefore, 0u);
    EXPECT_EQ(removed[0].idAfter, 0u);
    EXPECT_EQ(removed[0].name, "audio");
    const auto added = differences(bytesOf(without), bytesOf(holiday()));
    ASSERT_EQ(texts(added), Texts{"clip-added Song"});
    EXPECT_EQ(added[0].idBefore, 0u);
}

TEST(Comparison, ARelinkedClip) {
    const auto found =
        afterEdit([](json& document) { clipNamed(document, "Beach")["file"]["path"] = "other/beach.mp4"; });
    ASSERT_EQ(texts(found), Texts{"media-relinked Beach"});
    EXPECT_EQ(found[0].before, "media/beach.mp4");
    EXPECT_EQ(found[0].after, "other/beach.mp4");
}

TEST(Comparison, PathsCountFromTheFoldersOfTheProjects) {
    json edited = holiday();
    clipNamed(edited, "Beach")["file"]["path"] = "../film/media/beach.mp4";
    const auto compare = [&](const char* folder) {
        return texts(Reader::compare(projectOf(bytesOf(holiday()), QStringLiteral("/home/film")),
                                     projectOf(bytesOf(edited), QString::fromLatin1(folder))));
    };
    EXPECT_EQ(compare("/home/other"), Texts{});
    EXPECT_EQ(compare("/elsewhere/other"), Texts{"media-relinked Beach"});
}

TEST(Comparison, PathsWithAMarkerHaveNoFolder) {
    const auto compare = [](const char* before, const char* after) {
        json one = holiday();
        json other = holiday();
        clipNamed(one, "Beach")["file"]["path"] = before;
        clipNamed(other, "Beach")["file"]["path"] = after;
        return texts(Reader::compare(projectOf(bytesOf(one), QStringLiteral("/home/film")),
                                     projectOf(bytesOf(other), QStringLiteral("/home/other"))));
    };
    EXPECT_EQ(compare("#stock/beach.mp4", "#stock/beach.mp4"), Texts{});
    EXPECT_EQ(compare("#stock/beach.mp4", "../film/#stock/beach.mp4"), Texts{"media-relinked Beach"});
    EXPECT_EQ(compare("media/beach.mp4", ""), Texts{"media-relinked Beach"});
}

TEST(Comparison, PathsOfImportsCountFromTheFoldersToo) {
    const auto compare = [](const char* field, const json& value) {
        json edited = holiday();
        edited["data"]["content"]["userCollection"]["items"][0]["payload"][field] = value;
        return texts(Reader::compare(projectOf(bytesOf(holiday()), QStringLiteral("/home/film")),
                                     projectOf(bytesOf(edited), QStringLiteral("/home/film/media"))));
    };
    EXPECT_EQ(compare("resourcePath", "beach.mp4"), Texts{});
    EXPECT_EQ(compare("resourcePath", "pier.mp4"), Texts{"object-changed Import::Object resourcePath"});
    EXPECT_EQ(compare("resourcePath", 5), Texts{"object-changed Import::Object resourcePath"});
    EXPECT_EQ(compare("description", "../beach.mp4"), Texts{});
    EXPECT_EQ(compare("descriptionUrl", "../"), Texts{"object-changed Import::Object descriptionUrl"});
}

TEST(Comparison, AnEffect) {
    const auto removed = afterEdit([](json& document) { clipNamed(document, "Beach")["effects"].erase(1); });
    ASSERT_EQ(texts(removed), Texts{"effect-removed Beach"});
    EXPECT_EQ(removed[0].className, "Effect::AddNoize");
    EXPECT_EQ(removed[0].idAfter, 0u);

    const auto added = afterEdit([](json& document) {
        json effect = clipNamed(document, "Beach")["effects"][0];
        int id = 9000;
        eachObject(effect, [&](json& object) { object["@meta"]["object_id"] = ++id; });
        effect["@meta"]["class_name"] = "Effect::Sharpen";
        clipNamed(document, "Beach")["effects"].push_back(effect);
    });
    ASSERT_EQ(texts(added), Texts{"effect-added Beach"});
    EXPECT_EQ(added[0].className, "Effect::Sharpen");

    EXPECT_EQ(texts(afterEdit([](json& document) {
                  json& effects = clipNamed(document, "Beach")["effects"];
                  std::swap(effects[0], effects[1]);
              })),
              Texts{"effects-reordered Beach"});

    const auto changed = afterEdit([](json& document) {
        clipNamed(document, "Beach")["effects"][0]["Effect::VideoEffect"]["Effect::Object"]["intensity"] = 7;
    });
    ASSERT_EQ(texts(changed), Texts{"effect-changed Beach intensity"});
    EXPECT_EQ(changed[0].className, "Effect::Blur");
    EXPECT_EQ(changed[0].before, 5.0);
    EXPECT_EQ(changed[0].after, 7);
}

TEST(Comparison, ATransition) {
    const auto removed = afterEdit([](json& document) {
        timeline(document)["transitions"].clear();
        entryOf(document, "Beach")["timing"]["transitionOut"] = 0;
        entryOf(document, "Harbour")["timing"]["transitionIn"] = 0;
    });
    ASSERT_EQ(texts(removed), Texts{"transition-removed Beach"});
    EXPECT_EQ(removed[0].className, "Transition::Fade");

    const auto longer = afterEdit([](json& document) {
        entryOf(document, "Beach")["timing"]["transitionOut"] = 1500;
        entryOf(document, "Harbour")["timing"]["transitionIn"] = 1500;
    });
    ASSERT_EQ(texts(longer), Texts{"transition-changed Beach duration"});
    EXPECT_EQ(longer[0].before, 2000);
    EXPECT_EQ(longer[0].after, 3000);

    // Times of a transition that is not there are a difference, too.
    EXPECT_EQ(
        texts(afterEdit([](json& document) { entryOf(document, "Boat")["timing"]["transitionOut"] = 5; })),
        Texts{"clip-changed Boat transitionOut"});
}

TEST(Comparison, ATransitionToAClipThatIsNotThereIsEqualToItself) {
    json project = holiday();
    json& transition = project["data"]["content"]["timeline"]["transitions"][0];
    ASSERT_TRUE(transition.contains("clipTo"));
    const json clip = std::exchange(transition["clipTo"], {{"@meta_reference", 999999}});
    EXPECT_EQ(texts(differences(bytesOf(project), bytesOf(project))), Texts());
    json whole = project;
    whole["data"]["content"]["timeline"]["transitions"][0]["clipTo"] = clip;
    EXPECT_EQ(texts(differences(bytesOf(whole), bytesOf(project))),
              (Texts{"transition-removed Beach", "transition-added Beach"}));
}

TEST(Comparison, TheWordsOfATitle) {
    const auto found = afterEdit([](json& document) {
        clipNamed(document, "The old harbour")["overlay"]["items"][0]["encodedText"] = "UGllcg==";
    });
    ASSERT_EQ(texts(found), Texts{"text-changed The old harbour"});
    EXPECT_EQ(found[0].before, json({"The old harbour <1924>"}));
    EXPECT_EQ(found[0].after, json({"Pier"}));
}

TEST(Comparison, ATitleThatHadNoWords) {
    json without = holiday();
    clipNamed(without, "The old harbour")["overlay"] = nullptr;
    EXPECT_EQ(texts(differences(bytesOf(without), bytesOf(holiday()))),
              (Texts{"text-changed The old harbour", "clip-changed The old harbour overlay"}));
}

TEST(Comparison, ATransitionOfNoClip) {
    json project = holiday();
    json& transition = timeline(project)["transitions"][0];
    transition["clipFrom"] = {{"@meta_reference", 999998}};
    transition["clipTo"] = {{"@meta_reference", 999999}};
    EXPECT_EQ(texts(differences(bytesOf(project), bytesOf(project))), Texts{});
}

TEST(Comparison, ATrackThatNoClipIsOn) {
    json without = holiday();
    json& tracks = timeline(without)["tracks"];
    ASSERT_EQ(tracks[4]["type"], 32);
    tracks.erase(4);
    EXPECT_EQ(texts(differences(bytesOf(holiday()), bytesOf(without))),
              Texts{"object-changed Timeline::Object tracks/4"});
    EXPECT_EQ(texts(differences(bytesOf(without), bytesOf(holiday()))),
              Texts{"object-changed Timeline::Object tracks/4"});
}

TEST(Comparison, OtherFields) {
    EXPECT_EQ(texts(afterEdit([](json& document) { timeline(document)["frameRate"] = 30; })),
              Texts{"object-changed Timeline::Object frameRate"});
    EXPECT_EQ(texts(afterEdit([](json& document) {
                  clipNamed(document, "The old harbour")["overlay"]["items"][0]["outline"]["width"] = 9;
              })),
              Texts{"clip-changed The old harbour overlay/items/0/outline/width"});
    EXPECT_EQ(texts(afterEdit([](json& document) { document["author"] = "me"; })),
              Texts{"object-changed  author"});
    EXPECT_EQ(texts(afterEdit([](json& document) { clipNamed(document, "Beach")["overlay"] = nullptr; })),
              Texts{});
    EXPECT_EQ(
        texts(afterEdit([](json& document) { clipNamed(document, "The old harbour")["overlay"] = nullptr; })),
        (Texts{"text-changed The old harbour", "clip-changed The old harbour overlay"}));
}

TEST(Comparison, SeveralEditsOfRenumberedClips) {
    // Names and files find clips where ids are other ones.
    json edited = json::parse(bytesOf(Tests::renumbered(bytesOf(holiday()))).toStdString());
    entryOf(edited, "Song")["timing"]["timestamp"] = 100;
    entryOf(edited, "Boat")["timing"]["duration"] = 11000;
    clipNamed(edited, "Beach")["name"] = "Strand";
    EXPECT_EQ(texts(differences(bytesOf(holiday()), bytesOf(edited))),
              (Texts{"clip-moved Song", "clip-renamed Beach", "clip-trimmed Boat"}));
}

TEST(Comparison, ClipsOfOneNameAreDistinguishedByTheirPlaces) {
    json several = holiday();
    clipNamed(several, "Boat")["name"] = "Beach";
    clipNamed(several, "Harbour")["name"] = "Beach";
    json edited = several;
    edited["data"] = Tests::renumbered(bytesOf(several))["data"];
    for (json& entry : timeline(edited)["clips"]) {
        if (entry["timing"]["timestamp"] == 16000)
            entry["timing"]["timestamp"] = 17000;
    }
    const auto found = differences(bytesOf(several), bytesOf(edited));
    ASSERT_EQ(texts(found), Texts{"clip-moved Beach"});
    EXPECT_EQ(found[0].before["start"], 16000);
}

TEST(Comparison, ANestedTimeline) {
    const QByteArray bytes = Tests::bytesOf(Tests::sampleOf(70));
    json edited = json::parse(bytes.toStdString());
    clipNamed(edited, "Church")["name"] = "Chapel";
    EXPECT_EQ(texts(differences(bytes, bytesOf(edited))), Texts{"clip-renamed Church"});
    edited = json::parse(bytes.toStdString());
    eachObject(edited["data"], [](json& object) {
        if (object["@meta"]["class_name"] == "Timeline::Object" && object["name"] == "Village")
            object["name"] = "Town";
    });
    EXPECT_EQ(texts(differences(bytes, bytesOf(edited))), Texts{"object-changed Timeline::Object name"});
}

TEST(Comparison, ANestedTimelineThatNoClipShowsAnyMore) {
    const QByteArray bytes = Tests::bytesOf(Tests::sampleOf(70));
    json edited = json::parse(bytes.toStdString());
    unsigned long long scene = 0;
    eachObject(edited["data"], [&](json& object) {
        if (object["@meta"]["class_name"] == "Timeline::Object" && object["name"] == "Village")
            scene = object["@meta"]["object_id"];
    });
    clipNamed(edited, "Village")["nestedTimeline"] = nullptr;
    const auto removed = differences(bytes, bytesOf(edited));
    ASSERT_FALSE(removed.empty());
    EXPECT_EQ(texts(removed).back(), "timeline-removed Timeline::Object");
    EXPECT_EQ(removed.back().name, "Village");
    EXPECT_EQ(removed.back().idBefore, scene);
    EXPECT_EQ(removed.back().idAfter, 0U);
    const auto added = differences(bytesOf(edited), bytes);
    ASSERT_FALSE(added.empty());
    EXPECT_EQ(texts(added).back(), "timeline-added Timeline::Object");
    EXPECT_EQ(added.back().idBefore, 0U);
    EXPECT_EQ(added.back().idAfter, scene);
}

TEST(Comparison, AnArchiveWithoutItsRootObjectIsDifferent) {
    QByteArray broken = Tests::archive();
    broken.replace("<RootRef type='ObjectRef' value='2'/>", "<RootRef type='ObjectRef' value='77'/>");
    const auto lost = differences(Tests::archive(), broken);
    ASSERT_FALSE(lost.empty());
    EXPECT_EQ(lost.back().before, "Timeline::Object");
    const auto found = differences(broken, Tests::archive());
    ASSERT_FALSE(found.empty());
    EXPECT_EQ(found.back().after, "Timeline::Object");
}

TEST(Comparison, ManyEqualClipsTakeLittleTime) {
    // 20,000 clips of one name, file and place: a search of all pairs would take minutes.
    QByteArray entries;
    QByteArray clips;
    for (int id = 100; id < 40100; id += 2) {
        const QByteArray clip = QByteArray::number(id);
        entries += "<Item type='Item'><Key type='ObjectRef' value='" + clip +
                   "'/><Value type='Timeline::ClipTiming' objectId='" + QByteArray::number(id + 1) +
                   "'/></Item>";
        clips += "<RootObject type='Timeline::Clip' objectId='" + clip + "'/>";
    }
    QByteArray bytes = Tests::archive(clips);
    bytes.replace("</Item></clips>", "</Item>" + entries + "</clips>");
    EXPECT_EQ(texts(differences(bytes, bytes)), Texts{});
}

} // namespace
