// The classes and fields of the samples after migration: those of the newest version, and none of older ones.

#include "support/Holiday.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>

using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;
using Tests::bytesOf;
using Tests::migrated;
using Tests::Project;
using Tests::reelVersion;
using Tests::samples;
using Tests::sinceCollections;
using Tests::Strings;

namespace {

class FieldsMigrationTest : public Tests::HolidayTest {};

TEST_P(FieldsMigrationTest, NothingThatVersionsRemovedIsLeft) {
    const Project film = project();
    for (const json* clip : film.all("Timeline::Clip")) {
        for (const char* key : {"angle", "preview", "transition"})
            EXPECT_FALSE(clip->contains(key)) << clip->at("name") << ' ' << key;
        for (const char* key : {"labels", "motionTrackings", "collectionItemInfo", "quiz"})
            EXPECT_TRUE(clip->contains(key)) << clip->at("name") << ' ' << key;
        EXPECT_NE(clip->at("type"), 32);
    }
    std::size_t empty = 0; // class objects without a class: dangling references of the archive
    for (const auto& [id, object] : film.objects()) {
        const std::string name = Project::classOf(object);
        empty += name.empty() ? 1 : 0;
        for (const char* prefix : {"StaticPreview::", "Composition::", "Quiz::", "Collection::PersistentItem",
                                   "Predeclare", "Effect::Zoom", "Effect::PanAndZoom", "Effect::Cutaway"})
            EXPECT_FALSE(name.starts_with(prefix)) << name;
        for (const char* plain : {"VideoEffect", "AutoEnhance", "Crossfade", "Ripple"})
            EXPECT_NE(name, plain);
    }
    EXPECT_EQ(empty, version() == reelVersion ? 2u : 0u); // a second zoom and an enhancement without a flag
    for (const json* file : film.all("File"))
        EXPECT_FALSE(file->contains("composition"));
    for (const json* video : film.all("Video"))
        EXPECT_FALSE(video->contains("resizeMode"));
}

TEST_P(FieldsMigrationTest, TheRootHoldsContentAndResourceTable) {
    const Project film = project();
    EXPECT_EQ(Project::classOf(film.root()), "Project::PersistentObject");
    const json& content = film.follow(film.root(), "content");
    EXPECT_EQ(Project::classOf(content), "Project::Content");
    EXPECT_EQ(film.follow(content, "timeline").at("name"), "Holiday");
    EXPECT_EQ(Project::classOf(film.follow(content, "userCollection")), "EditorCollection::UserObject");
    EXPECT_EQ(Project::classOf(film.follow(film.root(), "resourceTable")), "ResourceTable::Object");
}

TEST_P(FieldsMigrationTest, CollectedItemsHoldTheirPayload) {
    const Project film = project();
    const json& content = film.follow(film.root(), "content");
    Strings payloads;
    for (const json& reference : film.follow(content, "userCollection").at("items")) {
        const json& item = film.follow(reference);
        EXPECT_EQ(Project::classOf(item), "Collection::Item");
        const json& payload = film.follow(item, "payload");
        payloads.push_back(item.at("collectionId").get<std::string>() + ' ' + Project::classOf(payload));
        EXPECT_FALSE(item.contains("item"));
        if (Project::classOf(payload) != "Import::Object" || !isLong())
            continue;
        const std::string name = payload.at("tag");
        EXPECT_EQ(payload.at("resourcePath"), "media/" + name);
        EXPECT_EQ(payload.at("blendingMode"), 5);
        EXPECT_EQ(payload.at("descriptionUrl"), "");
        EXPECT_EQ(item.at("downloadUrl"), "media://" + name);
        EXPECT_EQ(item.at("remoteSize"), version() < 49 ? -1 : 2048);
    }
    if (version() < sinceCollections)
        EXPECT_THAT(payloads, IsEmpty());
    else if (isLong())
        EXPECT_THAT(payloads,
                    ElementsAre("Media Import::Object", "Themes Import::Object", "Favourites Effect::Blur"));
    else
        EXPECT_THAT(payloads, ElementsAre("Media Import::Object"));
}

TEST_P(FieldsMigrationTest, LutsNameTheirCubeAsAuxiliaryResource) {
    const Project film = project();
    const auto luts = film.all("Effect::Lut");
    EXPECT_EQ(luts.size(), isLong() && version() >= sinceCollections ? 1u : 0u);
    const std::string cube = "0e7c1f9d-52a4-4d0b-8f43-6b1f0a9e77d5";
    for (const json* lut : luts) {
        EXPECT_FALSE(lut->contains("cubeResourceUuid"));
        const json& part = film.innermost(*lut);
        EXPECT_EQ(part.at("auxResource"), json({{"element_0", cube}, {"element_1", 4}}));
        EXPECT_EQ(part.at("uniqueId"), cube);
    }
}

TEST_P(FieldsMigrationTest, EveryEffectIsComplete) {
    const Project film = project();
    ASSERT_FALSE(film.all("Effect::Object").empty());
    for (const json* effect : film.all("Effect::Object")) {
        for (const char* key :
             {"id", "tag", "uniqueId", "intensity", "bypass", "auxResource", "resourcePath"})
            EXPECT_TRUE(effect->contains(key)) << *effect;
        EXPECT_TRUE(effect->at("id").is_string()) << *effect;
        const json& range = film.follow(*effect, "processedRange");
        EXPECT_EQ(range.at("from"), 0);
        EXPECT_EQ(range.at("to"), -1);
        EXPECT_FALSE(effect->contains("location"));
        if (effect->contains("description")) {
            EXPECT_EQ(effect->at("description") == "", effect->at("tag") == "") << *effect;
        }
    }
}

/// The fields that objects of each class have, as the editor itself saved them shortly before the newest version.
std::map<std::string, std::set<std::string>> newestFields() {
    std::map<std::string, std::set<std::string>> fields;
    const Project film(migrated(bytesOf(samples[std::size(samples) - 1])).bytes);
    for (const auto& [id, object] : film.objects()) {
        for (const auto& [key, value] : object.items())
            fields[Project::classOf(object)].insert(key);
    }
    return fields;
}

TEST_P(FieldsMigrationTest, ObjectsHaveTheFieldsOfTheNewestVersion) {
    if (!isLong())
        return;
    // References that only some clips have, and fields that the title in place of a quiz lacks.
    std::map<std::string, std::set<std::string>> optional = {
        {"Timeline::Clip", {"cropEnvelope", "stabilization", "volumeNormalize"}},
        {"Overlay::Item", {"envelope"}},
        {"Effect::Object", {"description"}}, // a noise suppression has none
        {"Timeline::Track", {"used"}},       // a new titles track has none
    };
    auto fields = newestFields();
    const auto addEffects = [&](const char* base, const Strings& names) {
        for (const std::string& name : names)
            fields.insert({"Effect::" + name, {"@meta", base}});
    };
    if (version() == reelVersion) {
        addEffects("Effect::VideoEffect",
                   {"Erosion", "HalfTone", "MotionBlur", "TiltShift", "AutoContrast", "AutoSaturation"});
        addEffects("Effect::AudioFilter", {"AudioEcho", "AudioReverberation", "AudioMuffle", "AudioRadio"});
        fields["Effect::FindEdges"] = {"@meta", "Effect::VideoEffect", "sensibility", "type"};
        fields[""] = {"@meta"};
        optional["Effect::Mask"] = {"highlightFrames", "backgroundFill", "backgroundOpacity",
                                    "backgroundSmoothness"}; // a mask that only conceals
    }
    const Project film = project();
    for (const auto& [id, object] : film.objects()) {
        const std::string className = Project::classOf(object);
        const auto wanted = fields.find(className);
        ASSERT_TRUE(wanted != fields.end()) << className;
        for (const auto& [key, value] : object.items())
            EXPECT_TRUE(wanted->second.count(key)) << className << " has " << key;
        for (const std::string& key : wanted->second)
            EXPECT_TRUE(object.contains(key) || optional[className].count(key))
                << className << " lacks " << key;
    }
}

INSTANTIATE_TEST_SUITE_P(Samples, FieldsMigrationTest, testing::ValuesIn(Tests::samples), Tests::sampleName);

} // namespace
