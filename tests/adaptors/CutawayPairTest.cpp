// A cutaway that version 8 writes lives on until version 41 makes a picture-in-picture effect of it.

#include "Adaptors/Project/V13_PictureInPictureAdaptor.h"
#include "Adaptors/Project/V33_EffectIntensityAdaptor.h"
#include "Adaptors/Project/V41_CutawayToPictureInPictureAdaptor.h"
#include "Adaptors/Project/V8_ChromaKeyPiPAdaptor.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"
#include "support/Compare.h"
#include "support/Documents.h"

#include <gtest/gtest.h>

#include <QDomDocument>

using Archive::Internal::childAt;
using Archive::Internal::rootObjects;

namespace {

/// Two clips, each with a chroma key and something else.
constexpr const char* project = R"(
<Archive>
  <RootObject type="Predeclarator" objectId="2"><predeclarations type="Array" size="0"/></RootObject>
  <RootObject type="Timeline::Clip" objectId="3">
    <effects type="Array" size="2">
      <Item type="Item" index="1"><Data type="ObjectRef" value="5"/></Item>
      <Item type="Item" index="2"><Data type="ObjectRef" value="6"/></Item>
    </effects>
  </RootObject>
  <RootObject type="Timeline::Clip" objectId="4">
    <effects type="Array" size="1">
      <Item type="Item" index="1"><Data type="ObjectRef" value="5"/></Item>
    </effects>
  </RootObject>
  <RootObject type="Effect::ChromaKey" objectId="5">
    <BaseOfObject type="Effect::VideoEffect" objectId="5">
      <BaseOfObject type="Effect::Object" objectId="5"><uniqueId type="uint32_t" value="9"/></BaseOfObject>
    </BaseOfObject>
  </RootObject>
  <RootObject type="Effect::Blur" objectId="6">
    <BaseOfObject type="Effect::VideoEffect" objectId="6">
      <BaseOfObject type="Effect::Object" objectId="6"/>
    </BaseOfObject>
  </RootObject>
</Archive>)";

template <class Adaptor>
void run(QDomDocument& document) {
    Adaptor().adapt(document);
}

QDomElement objectPart(const QDomElement& effect) {
    return childAt(effect, {"BaseOfObject", "BaseOfObject"});
}

QString lastEffectOf(const QDomElement& clip) {
    return childAt(clip, {"effects"}).lastChildElement("Item").firstChildElement("Data").attribute("value");
}

/// The record that declares the object.
QDomElement recordOf(const QDomDocument& document, const QString& id) {
    for (const QDomElement& item : Archive::Internal::elements(document, "Item")) {
        const QDomElement record = item.firstChildElement("Data");
        if (record.attribute("type") == "Predeclare" && Archive::valueOf(record, "oid") == id)
            return record;
    }
    return {};
}

TEST(CutawayPairTest, CutawaysBecomePictureInPicture) {
    QDomDocument document = Tests::xml(project);
    run<Project::V8_ChromaKeyPiPAdaptor>(document);
    ASSERT_EQ(rootObjects(document, "Effect::Cutaway").size(), 2u);
    run<Project::V41_CutawayToPictureInPictureAdaptor>(document);

    EXPECT_TRUE(rootObjects(document, "Effect::Cutaway").empty());
    const auto clips = rootObjects(document, "Timeline::Clip");
    const auto pictures = rootObjects(document, "Effect::PictureInPicture");
    ASSERT_EQ(pictures.size(), 2u);
    for (std::size_t number = 0; number < 2; ++number) {
        const QDomElement& picture = pictures[number];
        const QString id = picture.attribute("objectId");
        EXPECT_EQ(lastEffectOf(clips[number]), id);

        const QDomElement object = objectPart(picture);
        EXPECT_EQ(Archive::valueOf(object, "id"), "f60a32dd-2591-4cd3-859a-69f9c6a6838f");
        EXPECT_EQ(Archive::valueOf(object, "tag"), "effect_cutaway");
        EXPECT_EQ(Archive::valueOf(object, "uniqueId"), "32769");

        const QDomElement transform = picture.lastChildElement();
        EXPECT_EQ(transform.tagName(), "transform");
        EXPECT_EQ(Archive::readValue(transform.firstChildElement("m11"), 0), 1.0);
        EXPECT_EQ(Archive::readValue(transform.firstChildElement("m12"), 7), 0.0);
        EXPECT_EQ(Archive::readValue(transform.firstChildElement("m33"), 0), 1.0);

        const QDomElement record = recordOf(document, id);
        EXPECT_EQ(Archive::valueOf(record, "typeName"), "Effect::PictureInPicture");
        EXPECT_EQ(childAt(record, {"refs", "Item", "Data"}).attribute("value"),
                  transform.attribute("objectId"));
        EXPECT_EQ(Archive::valueOf(recordOf(document, transform.attribute("objectId")), "poid"), id);
    }
}

TEST(CutawayPairTest, PictureInPictureStepLeavesCutawaysAlone) {
    QDomDocument document = Tests::xml(project);
    run<Project::V8_ChromaKeyPiPAdaptor>(document);
    const QDomNode before = document.cloneNode();
    run<Project::V13_PictureInPictureAdaptor>(document);
    EXPECT_EQ(Tests::difference(before, document), "");
}

TEST(CutawayPairTest, IntensityStaysWithTheCutaway) {
    QDomDocument document = Tests::xml(project);
    run<Project::V8_ChromaKeyPiPAdaptor>(document);
    run<Project::V33_EffectIntensityAdaptor>(document);
    run<Project::V41_CutawayToPictureInPictureAdaptor>(document);

    const auto pictures = rootObjects(document, "Effect::PictureInPicture");
    ASSERT_EQ(pictures.size(), 2u);
    for (const QDomElement& picture : pictures) {
        const QDomElement intensity = objectPart(picture).lastChildElement();
        EXPECT_EQ(intensity.tagName(), "intensity");
        EXPECT_EQ(Archive::readValue(intensity, 0), 1.0);
    }
}

} // namespace
