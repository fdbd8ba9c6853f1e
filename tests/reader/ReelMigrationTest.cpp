// The reel: every class of effect on several clips, shared effects, and effects that no clip lists.

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"
#include "Reader/Verify.h"
#include "support/Holiday.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDomDocument>
#include <QSet>

#include <map>
#include <set>
#include <vector>

using nlohmann::json;
using Reader::Document;
using testing::ElementsAre;
using Tests::bytesOf;
using Tests::clipNamed;
using Tests::matrixOf;
using Tests::migrated;
using Tests::Project;
using Tests::reelVersion;
using Tests::sampleOf;
using Tests::Strings;

namespace {

class ReelMigrationTest : public testing::Test {
protected:
    static QByteArray bytes() { return bytesOf(sampleOf(reelVersion)); }

    static const Project& film() {
        static const Project project(migrated(bytes()).bytes);
        return project;
    }

    static const json& effectAt(const std::string& clip, std::size_t number) {
        return film().follow(clipNamed(film(), clip).at("effects").at(number));
    }
    static double intensityAt(const std::string& clip, std::size_t number) {
        return film().innermost(effectAt(clip, number)).at("intensity").get<double>();
    }
    static std::string uniqueIdAt(const std::string& clip, std::size_t number) {
        return film().innermost(effectAt(clip, number)).at("uniqueId").get<std::string>();
    }
    static std::vector<double> placeAt(const std::string& clip, std::size_t number,
                                       const std::string& key = "transform") {
        return matrixOf(film(), effectAt(clip, number), key);
    }
    static std::vector<double> intensitiesOf(const std::string& clip) {
        std::vector<double> found;
        for (std::size_t number = 0; number < clipNamed(film(), clip).at("effects").size(); ++number)
            found.push_back(intensityAt(clip, number));
        return found;
    }
};

TEST_F(ReelMigrationTest, SharedEffectsStayShared) {
    const auto idAt = [](const char* clip, std::size_t number) {
        return Serialize::Json::getObjectId(effectAt(clip, number)).value();
    };
    EXPECT_EQ(idAt("Dunes", 0), idAt("Rain", 1));
    EXPECT_EQ(idAt("Window", 0), idAt("Door", 1)); // the inset
    EXPECT_EQ(idAt("Window", 1), idAt("Door", 0)); // the key
    EXPECT_NE(idAt("Window", 2), idAt("Door", 2)); // what follows belongs to each clip alone
    EXPECT_EQ(idAt("Cave", 3), idAt("Ship to shore", 1));
}

TEST_F(ReelMigrationTest, StrengthsAreIntensities) {
    EXPECT_THAT(intensitiesOf("Dunes"), ElementsAre(5, 1, 0.5, 0.25, 0.75, 5));
    // Edges and shift were saved without a strength: there is only the factor.
    EXPECT_THAT(intensitiesOf("Rain"), ElementsAre(50, 5, 1, 0.75, 0.5, 20, 0.5, 0.75));
    EXPECT_EQ(effectAt("Dunes", 2).at("sensibility"), 2);
    for (const char* clip : {"Dunes", "Rain"}) {
        for (const json& effect : clipNamed(film(), clip).at("effects")) {
            for (const char* old : {"level", "radius", "blend", "threshold", "scale", "brns"})
                EXPECT_FALSE(film().follow(effect).contains(old)) << clip << ' ' << old;
        }
    }
}

TEST_F(ReelMigrationTest, ZoomsBecomeEnvelopesOfEachClip) {
    std::set<unsigned long long> envelopes;
    for (const char* name : {"Pier", "Dock", "Mole"}) {
        const json& envelope = film().follow(clipNamed(film(), name), "cropEnvelope");
        envelopes.insert(Serialize::Json::getObjectId(envelope).value());
        std::vector<double> steps;
        for (const json& key : envelope.at("keyValues"))
            steps.push_back(film().follow(key).at("step").get<double>());
        EXPECT_THAT(steps, ElementsAre(0, 0.25, 0.75, 1)) << name;
    }
    EXPECT_EQ(envelopes.size(), 3u);
    EXPECT_EQ(effectAt("Pier", 0).at("preset"), 0);
    EXPECT_EQ(effectAt("Dock", 0).at("preset"), 2);
    EXPECT_EQ(effectAt("Mole", 1).at("preset"), 3);
}

TEST_F(ReelMigrationTest, AutomaticEnhancementIsFourEffects) {
    EXPECT_EQ(uniqueIdAt("Lens", 1), "2292fad1-77b2-4384-b9fe-c52358e19419");
    EXPECT_EQ(uniqueIdAt("Lens", 2), "fe49dfef-2cc8-4a94-976e-6dce9a0d3e55");
    EXPECT_EQ(uniqueIdAt("Lens", 3), "96d1bead-399f-43a1-a448-b1e3ff7ddf80");
    EXPECT_EQ(uniqueIdAt("Lens", 4), "4b7ee600-1cdf-4a97-9b06-f6c23f35fced");
    EXPECT_EQ(uniqueIdAt("Lens", 5), "7cbc055b-98bf-4fcc-be7d-f431a05e608a");
    EXPECT_EQ(effectAt("Lens", 5).at("contrast"), -0.5);
}

TEST_F(ReelMigrationTest, MasksKeepTheirFrames) {
    const auto frames = [](const char* clip, const char* list) {
        std::vector<std::vector<double>> places;
        for (const json& frame : effectAt(clip, 0).at(list))
            places.push_back(
                matrixOf(film(), film().follow(film().follow(frame), "Effect::Frame"), "transform"));
        return places;
    };
    EXPECT_THAT(frames("Keyhole", "highlightFrames"),
                ElementsAre(ElementsAre(1, 0, 0, 0, 0.5, 0, 0, -0.25, 1)));
    EXPECT_THAT(frames("Keyhole", "concealFrames"), ElementsAre(ElementsAre(0.5, 0, 0, 0, 1, 0, 0.25, 0, 1)));
    EXPECT_EQ(effectAt("Keyhole", 0).at("backgroundOpacity"), 0.5);
    EXPECT_THAT(frames("Porthole", "concealFrames"), ElementsAre(ElementsAre(0.5, 0, 0, 0, 0.5, 0, 0, 0, 1)));
    for (const char* key : {"highlightFrames", "backgroundFill", "backgroundOpacity", "backgroundSmoothness"})
        EXPECT_FALSE(effectAt("Porthole", 0).contains(key)) << key;
    // A frame had two sizes in the archive; the later one is kept.
    EXPECT_EQ(film().follow(effectAt("Porthole", 0).at("concealFrames").at(0)).at("pixelSize"), 0);
}

TEST_F(ReelMigrationTest, PicturesKeepTheirPositions) {
    EXPECT_THAT(placeAt("Window", 0), ElementsAre(0.25, 0, 0, 0, 0.25, 0, -0.375, -0.375, 1));
    for (const char* clip : {"Window", "Door"}) {
        EXPECT_THAT(placeAt(clip, 2), ElementsAre(1, 0, 0, 0, 1, 0, 0, 0, 1));
        EXPECT_EQ(film().innermost(effectAt(clip, 2)).at("tag"), "effect_cutaway");
        EXPECT_EQ(uniqueIdAt(clip, 2), "bf86d91d-8347-4030-9e6c-2872dfcf1628");
    }
    EXPECT_EQ(uniqueIdAt("Door", 0), "a19188b6-c1fc-49e1-9395-8e8c2c17078b");
    for (const char* side : {"transformSrc", "transformDst"}) {
        EXPECT_THAT(placeAt("Twins", 0, side), ElementsAre(0.5, 0, 0, 0, 1, 0, -0.25, 0, 1));
        EXPECT_THAT(placeAt("Twins", 1, side), ElementsAre(0.5, 0, 0, 0, 1, 0, 0.25, 0, 1));
        EXPECT_THAT(placeAt("Tide", 0, side), ElementsAre(1, 0, 0, 0, 0.5, 0, 0, 0.25, 1));
    }
    EXPECT_EQ(effectAt("Twins", 1).at("mode"), 2);
    EXPECT_THAT(placeAt("Tide", 1), ElementsAre(2, 0, 0, 0, 1, 0, -0.5, 0, 1));
    EXPECT_EQ(effectAt("Gulf", 0).at("angle"), -90);
    const json& steady = film().follow(clipNamed(film(), "Gulf"), "stabilization");
    EXPECT_EQ(steady.at("pathOriginal"), "media/boat.mp4");
    EXPECT_EQ(steady.at("pathStabilized"), "stabilized/boat.mp4");
    EXPECT_EQ(steady.at("sourceDurationOriginal"), 500);
}

TEST_F(ReelMigrationTest, SoundEffectsHaveIdsOfTheirOwn) {
    const char* const echo = "23426fc3-a681-413a-a9fe-340503101431";
    const char* const reverberation = "e738de79-e6e1-4d25-9ae2-6bec3b427525";
    const char* const muffle = "5899d84f-ec6c-4896-b9b9-8c2556468536";
    const char* const radio = "72edac99-e300-45d8-8e57-0f7bfef3bf54";
    const char* const phone = "7f10aa3a-79c9-4bdf-9a5c-7005690a961a";
    const char* const pitch = "342d639d-1182-4b70-b071-1831d484cb85";
    EXPECT_EQ(uniqueIdAt("Cave", 0), echo);
    EXPECT_EQ(uniqueIdAt("Cave", 1), reverberation);
    EXPECT_EQ(uniqueIdAt("Cave", 2), muffle);
    EXPECT_EQ(uniqueIdAt("Ship to shore", 3), radio);
    EXPECT_EQ(uniqueIdAt("Ship to shore", 4), phone);
    EXPECT_EQ(uniqueIdAt("Ship to shore", 5), pitch);
    // It was in no group, so it keeps its id.
    EXPECT_EQ(uniqueIdAt("Puppets", 3), "523d41e0-d692-4e08-817a-cc69788c6ab2");

    EXPECT_THAT(intensitiesOf("Ship to shore"), ElementsAre(1, 1, 1, 1, 0.67, 0.5));
    EXPECT_EQ(effectAt("Ship to shore", 4).at("gainUp"), 30);
    EXPECT_EQ(effectAt("Ship to shore", 4).at("gainDown"), 75);
    EXPECT_EQ(effectAt("Ship to shore", 5).at("pitch"), 0.6);
    EXPECT_THAT(intensitiesOf("Puppets"), ElementsAre(0.8, 1, 1, 1, 1, 1, 1, 1));
    EXPECT_EQ(effectAt("Puppets", 0).at("pitch"), 0.6);
    EXPECT_EQ(effectAt("Puppets", 1).at("pitch"), 2);
    EXPECT_EQ(effectAt("Puppets", 2).at("gainUp"), 10);
    for (const std::size_t number : {std::size_t(3), std::size_t(4)})
        EXPECT_EQ(effectAt("Cave", number).at("levelPercent"), 50);
    EXPECT_FALSE(effectAt("Cave", 4).contains("range"));
    EXPECT_EQ(uniqueIdAt("Ship to shore", 0), "6c7a85ac-2a34-44a0-bd07-504f95370354");
    EXPECT_EQ(clipNamed(film(), "Ship to shore").at("volumeNormalize"), true);
    EXPECT_EQ(clipNamed(film(), "Cave").at("volumeNormalize"), false);
}

/// The effects of an archive that no clip lists, by class.
std::map<QString, QDomElement> unlistedEffects(const QDomDocument& xml) {
    QSet<QString> listed;
    std::map<QString, QDomElement> found;
    const auto objects = Archive::Internal::elements(xml, "RootObject");
    for (const QDomElement& object : objects) {
        for (const QDomElement& item :
             Archive::Internal::children(object.firstChildElement("effects"), "Item"))
            listed.insert(Archive::valueOf(item, "Data"));
    }
    for (const QDomElement& object : objects) {
        if (Archive::typeOf(Archive::findRootBaseOfObject(object)) == "Effect::Object" &&
            !listed.contains(object.attribute("objectId"))) {
            EXPECT_TRUE(found.emplace(Archive::typeOf(object), object).second)
                << Archive::typeOf(object).toStdString() << " is there twice";
        }
    }
    return found;
}

TEST_F(ReelMigrationTest, EffectsOfNoClipAreConvertedToo) {
    const Document document =
        Reader::parse(migrated(bytes(), Reader::lastXmlVersion).bytes, QStringLiteral("holiday"));
    const auto effects = unlistedEffects(document.xml());
    Strings names;
    for (const auto& [name, effect] : effects)
        names.push_back(name.toStdString());
    // No zoom is left, no cutaway was created, and masks without a clip are not merged.
    EXPECT_THAT(names, ElementsAre("Effect::AudioNoiseSuppress", "Effect::AudioPhone", "Effect::AudioPitch",
                                   "Effect::AutoSaturation", "Effect::Blur", "Effect::ChromaKey",
                                   "Effect::Crop", "Effect::MagicEnhance", "Effect::ManualEnhance",
                                   "Effect::MaskConceal", "Effect::MaskHighlight", "Effect::PictureInPicture",
                                   "Effect::PopArt", "Effect::SideBySide"));
    const auto partOf = [&](const char* name) {
        return Archive::findRootBaseOfObject(effects.at(QStringLiteral("Effect::") + name));
    };
    const auto intensity = [&](const char* name) {
        return Archive::readValue(partOf(name).firstChildElement("intensity"), -1);
    };
    EXPECT_EQ(intensity("Blur"), 5);
    EXPECT_EQ(intensity("AudioPhone"), 0.67);
    EXPECT_EQ(intensity("AudioPitch"), 0.5);
    EXPECT_EQ(intensity("MagicEnhance"), 1);
    EXPECT_EQ(Archive::valueOf(partOf("ChromaKey"), "uniqueId"), "a19188b6-c1fc-49e1-9395-8e8c2c17078b");
    EXPECT_EQ(Archive::valueOf(partOf("ManualEnhance"), "uniqueId"), "7cbc055b-98bf-4fcc-be7d-f431a05e608a");
    for (const char* name : {"Crop", "PictureInPicture"})
        EXPECT_EQ(effects.at(QStringLiteral("Effect::") + name).lastChildElement().tagName(), "transform");
    EXPECT_EQ(effects.at("Effect::SideBySide").lastChildElement().tagName(), "transformDst");
    EXPECT_EQ(Archive::valueOf(effects.at("Effect::PopArt"), "preset"), "1");
    for (const auto& [name, effect] : effects)
        EXPECT_FALSE(Archive::findRootBaseOfObject(effect).firstChildElement("processedRange").isNull())
            << name.toStdString();
}

TEST_F(ReelMigrationTest, OnlyTwoEntriesDangle) {
    const Document document =
        Reader::parse(migrated(bytes(), Reader::lastXmlVersion).bytes, QStringLiteral("holiday"));
    std::map<unsigned long long, std::string> names;
    for (const Reader::Clip& clip : Reader::listClips(document))
        names[clip.id] = clip.name;
    Strings dangling;
    for (const Reader::Finding& finding : Reader::verify(document)) {
        if (finding.fault == Reader::Fault::DanglingReference)
            dangling.push_back(finding.className + ' ' + names[finding.id]);
    }
    // The second zoom of one clip, the enhancement without a flag of the other.
    EXPECT_THAT(dangling, testing::UnorderedElementsAre("Timeline::Clip Mole", "Timeline::Clip Fog"));

    // Every effect is declared once with its class, except a frame. No removed object is declared.
    std::map<QString, QString> declared;
    const QDomElement list = Archive::Internal::firstDescendant(document.xml(), "predeclarations");
    Archive::iterateArray(list, [&](QDomElement& record) {
        EXPECT_TRUE(
            declared.emplace(Archive::valueOf(record, "oid"), Archive::valueOf(record, "typeName")).second)
            << Archive::valueOf(record, "oid").toStdString() << " is declared twice";
    });
    EXPECT_EQ(list.attribute("size").toUInt(), declared.size());
    for (const QDomElement& object : Archive::Internal::elements(document.xml(), "RootObject")) {
        if (Archive::typeOf(Archive::findRootBaseOfObject(object)) == "Effect::Object") {
            EXPECT_EQ(declared[object.attribute("objectId")], Archive::typeOf(object));
        }
    }
}

} // namespace
