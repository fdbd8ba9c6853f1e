// The index of objects by class that all steps on JSON share.

#include "Archive/Internal/FlatEditor.h"

#include "Adaptors/JsonStep.h"
#include "Reader/AdaptorTable.h"
#include "Reader/Document.h"
#include "support/ProgramTest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <string>
#include <vector>

using Archive::Internal::FlatEditor;
using Archive::Internal::SelectedObject;
using nlohmann::json;
using Serialize::Json::FlatObject;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Id = unsigned long long;
constexpr Id greatestId = std::numeric_limits<Id>::max();

json objectOf(const std::string& className, Id id) {
    return {{"@meta", {{"class_name", className}, {"object_id", id}}}};
}

std::vector<Id> idsOf(const std::vector<SelectedObject>& selection) {
    std::vector<Id> ids;
    for (const SelectedObject& selected : selection)
        ids.push_back(selected.id);
    return ids;
}

TEST(FlatEditor, FindsObjectsOfAClassInAscendingIds) {
    FlatObject document;
    for (const Id id : {Id(9), Id(3), greatestId})
        document.objects[id] = objectOf("A", id);
    document.objects[0] = objectOf("B", 0);
    FlatEditor editor(document);
    const auto selection = editor.objects("A");
    EXPECT_THAT(idsOf(selection), ElementsAre(3, 9, greatestId));
    EXPECT_EQ(selection[1].object, &document.objects.at(9));
    EXPECT_THAT(idsOf(editor.objects("B")), ElementsAre(0));
    EXPECT_THAT(editor.objects("C"), IsEmpty());
}

TEST(FlatEditor, FindsObjectsOfSeveralClassesInAscendingIds) {
    FlatObject document;
    document.objects[2] = objectOf("B", 2);
    document.objects[5] = objectOf("A", 5);
    document.objects[7] = objectOf("B", 7);
    FlatEditor editor(document);
    EXPECT_THAT(idsOf(editor.objects(std::set<std::string>{"A", "B", "C"})), ElementsAre(2, 5, 7));
}

TEST(FlatEditor, AnEmptyDocumentHasNoObjectsUntilOneIsCreated) {
    FlatObject document;
    FlatEditor editor(document);
    EXPECT_THAT(editor.objects("A"), IsEmpty());
    document.createObject("A");
    EXPECT_THAT(idsOf(editor.objects("A")), ElementsAre(1));
}

TEST(FlatEditor, FindsObjectsThatWereCreatedSinceItsLastUse) {
    FlatObject document;
    document.objects[4] = objectOf("A", 4);
    FlatEditor editor(document);
    const auto before = editor.objects("A");
    document.createObject("A");
    document.createObject("B");
    EXPECT_THAT(idsOf(before), ElementsAre(4)); // a snapshot
    EXPECT_THAT(idsOf(editor.objects("A")), ElementsAre(4, 5));
    EXPECT_THAT(idsOf(editor.objects("B")), ElementsAre(6));
}

// Steps that read an id that the document lacks add an empty entry, also between others.
TEST(FlatEditor, EmptyEntriesAreNoObjects) {
    FlatObject document;
    document.objects[4] = objectOf("A", 4);
    FlatEditor editor(document);
    ASSERT_THAT(idsOf(editor.objects("A")), ElementsAre(4));
    document.objects[2];
    document.objects[8];
    document.createObject("A");
    EXPECT_THAT(idsOf(editor.objects("A")), ElementsAre(4, 9));
}

TEST(FlatEditor, ForgetsWhatIsInvalid) {
    FlatObject document;
    document.objects[4] = objectOf("A", 4);
    document.objects[6] = objectOf("A", 6);
    FlatEditor editor(document);
    ASSERT_THAT(idsOf(editor.objects("A")), ElementsAre(4, 6));
    document.objects.erase(6);
    document.objects[4] = objectOf("B", 4);
    editor.invalidate();
    EXPECT_THAT(editor.objects("A"), IsEmpty());
    EXPECT_THAT(idsOf(editor.objects("B")), ElementsAre(4));
}

/// The steps on JSON above that version, and the adaptors on request, which need nothing but the document.
std::vector<std::unique_ptr<Bundle::JsonStep>> stepsAbove(int version) {
    std::vector<std::unique_ptr<Bundle::JsonStep>> steps;
    for (const Reader::AdaptorRow* row :
         Reader::stepsFor(Bundle::Backend::Json, version, Reader::currentVersion)) {
        if (row->hasJson())
            steps.push_back(row->makeJson());
    }
    for (const Reader::AdaptorRow* row : Reader::adaptorsOf(Reader::Stage::OnRequest)) {
        if (row->hasJson())
            steps.push_back(row->makeJson());
    }
    return steps;
}

// A step that removed an object or changed its class without the editor's knowledge would make the two differ.
TEST(FlatEditor, StepsGiveTheSameWithOneEditorAndWithOneEach) {
    for (const char* name :
         {"holiday-v60.json", "holiday-v63.json", "holiday-v70.json", "holiday-v76.json"}) {
        const Reader::Document parsed = Reader::parse(Tests::sample(name), name);
        Reader::Document together = parsed.clone();
        Reader::Document apart = parsed.clone();
        FlatEditor editor(together.json().flat);
        for (const auto& step : stepsAbove(parsed.version().value())) {
            step->apply(editor);
            step->adapt(apart.json().flat);
            EXPECT_EQ(together.json().flat.objects, apart.json().flat.objects) << name;
        }
    }
}

} // namespace
