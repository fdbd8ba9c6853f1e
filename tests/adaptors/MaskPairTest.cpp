// What the step to version 20 writes, the step to version 51 finds.

#include "Adaptors/Project/V20_HighlightConcealAdaptor.h"
#include "Adaptors/Project/V51_MaskEffectAdaptor.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"
#include "support/Log.h"

#include <gtest/gtest.h>

#include <map>

namespace {

using Archive::Internal::childAt;
using Archive::Internal::children;
using Archive::Internal::elements;
using Archive::Internal::rootObjects;

QString maskOf(int id, int rectId, int maskType, int borderType, int invertType) {
    // A rectangle from (0.25, 0.5) to (0.75, 1), a width of 1/3, an opacity of 0.75.
    return QStringLiteral(
               "<RootObject type='Effect::Mask' objectId='%1'>"
               "<BaseOfObject type='Effect::VideoEffect' objectId='%1'>"
               "<BaseOfObject type='Effect::Object' objectId='%1'><id type='String' value='40'/>"
               "<tag type='String' value='effect_mask'/><uniqueId type='String' value='40'/></BaseOfObject>"
               "</BaseOfObject><rect type='Types::RectF' objectId='%2'>"
               "<left type='double' value='0.25' binaryData='P9AAAAAAAAA='/>"
               "<top type='double' value='0.5' binaryData='P+AAAAAAAAA='/>"
               "<right type='double' value='0.75' binaryData='P+gAAAAAAAA='/>"
               "<bottom type='double' value='1' binaryData='P/AAAAAAAAA='/></rect>"
               "<maskType type='int32_t' value='%3'/><frameType type='int32_t' value='5'/>"
               "<borderType type='int32_t' value='%4'/>"
               "<width type='double' value='0.333333' binaryData='P9VVVVVVVVU='/>"
               "<invertType type='int32_t' value='%5'/>"
               "<opacity type='double' value='0.75' binaryData='P+gAAAAAAAA='/></RootObject>")
        .arg(id)
        .arg(rectId)
        .arg(maskType)
        .arg(borderType)
        .arg(invertType);
}

QString recordOf(int recordId, const char* typeName, int oid, int poid) {
    return QStringLiteral("<Item type='Item' index='0'><Data type='Predeclare' objectId='%1'>"
                          "<typeName type='String' value='%2'/><oid type='ObjectRef' value='%3'/>"
                          "<poid type='ObjectRef' value='%4'/><refs type='Array' size='0'/></Data></Item>")
        .arg(recordId)
        .arg(QLatin1String(typeName))
        .arg(oid)
        .arg(poid);
}

/// A clip 3 with a highlight 10, another effect 15 and a conceal 20.
QString projectOfVersion19() {
    return "<Archive><RootObject type='Predeclarator' objectId='1'><predeclarations type='Array' size='5'>" +
           recordOf(31, "Timeline::Clip", 3, 2) + recordOf(32, "Effect::Mask", 10, 3) +
           recordOf(33, "Types::RectF", 11, 10) + recordOf(34, "Effect::Mask", 20, 3) +
           recordOf(35, "Types::RectF", 21, 20) +
           "</predeclarations></RootObject><RootObject type='Timeline::Clip' objectId='3'>"
           "<effects type='Array' size='3'>"
           "<Item type='Item' index='1'><Data type='ObjectRef' value='10'/></Item>"
           "<Item type='Item' index='2'><Data type='ObjectRef' value='15'/></Item>"
           "<Item type='Item' index='3'><Data type='ObjectRef' value='20'/></Item></effects></RootObject>" +
           maskOf(10, 11, 2, 1, 1) + maskOf(20, 21, 3, 0, 0) + "</Archive>";
}

class MaskPairTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_document.setContent(projectOfVersion19()));
        const Tests::Log log;
        Project::V20_HighlightConcealAdaptor().adapt(m_document);
        Project::V51_MaskEffectAdaptor().adapt(m_document);
        EXPECT_TRUE(log.lines().empty()) << log.lines().front();
        const auto masks = rootObjects(m_document, "Effect::Mask");
        ASSERT_EQ(masks.size(), 1U);
        m_mask = masks.front();
    }

    QDomElement frameIn(const QString& array) const { return childAt(m_mask, {array, "Item", "Data"}); }

    QDomElement recordOfObject(const QString& id) const {
        QDomElement found;
        int count = 0;
        for (const QDomElement& data : elements(m_document, "Data")) {
            if (Archive::typeOf(data) == "Predeclare" && Archive::valueOf(data, "oid") == id) {
                found = data;
                ++count;
            }
        }
        EXPECT_LE(count, 1) << "several records of " << id.toStdString();
        return found;
    }

    QStringList refsOf(const QDomElement& record) const {
        QStringList refs;
        for (const QDomElement& item : children(record.firstChildElement("refs"), "Item"))
            refs.append(Archive::valueOf(item, "Data"));
        return refs;
    }

    QDomDocument m_document;
    QDomElement m_mask;
};

QStringList childNames(const QDomElement& e) {
    QStringList names;
    for (QDomElement child = e.firstChildElement(); !child.isNull(); child = child.nextSiblingElement())
        names.append(child.tagName());
    return names;
}

double doubleOf(const QDomElement& parent, const QString& name) {
    return Archive::readValue(parent.firstChildElement(name), -1.0);
}

TEST_F(MaskPairTest, MergesBothEffectsOfTheClip) {
    EXPECT_TRUE(rootObjects(m_document, "Effect::MaskHighlight").empty());
    EXPECT_TRUE(rootObjects(m_document, "Effect::MaskConceal").empty());
    EXPECT_EQ(childNames(m_mask), QStringList({"BaseOfObject", "backgroundFill", "backgroundOpacity",
                                               "backgroundSmoothness", "highlightFrames", "concealFrames"}));
    EXPECT_EQ(Archive::valueOf(m_mask, "backgroundFill"), "2");
    EXPECT_EQ(doubleOf(m_mask, "backgroundOpacity"), 0.75);
    EXPECT_EQ(doubleOf(m_mask, "backgroundSmoothness"), 0.333333); // of 1/3 the text had six digits
}

TEST_F(MaskPairTest, ClipListsTheMaskLast) {
    const auto items =
        children(rootObjects(m_document, "Timeline::Clip").front().firstChildElement("effects"), "Item");
    ASSERT_EQ(items.size(), 2U);
    EXPECT_EQ(Archive::valueOf(items[0], "Data"), "15");
    EXPECT_EQ(Archive::valueOf(items[1], "Data"), m_mask.attribute("objectId"));
}

TEST_F(MaskPairTest, FramesKeepWhatTheOldMaskSaid) {
    const QDomElement highlight = frameIn("highlightFrames");
    const QDomElement conceal = frameIn("concealFrames");
    EXPECT_EQ(Archive::typeOf(highlight), "Effect::FrameHighlight");
    EXPECT_EQ(Archive::typeOf(conceal), "Effect::FrameConceal");
    EXPECT_EQ(childNames(highlight), QStringList({"BaseOfObject"}));
    EXPECT_EQ(childNames(conceal),
              QStringList({"method", "opacity", "smoothness", "pixelSize", "BaseOfObject", "pixelSize"}));
    EXPECT_EQ(Archive::valueOf(conceal, "method"), "3");
    EXPECT_EQ(doubleOf(conceal, "opacity"), 0.75);
    EXPECT_EQ(doubleOf(conceal, "smoothness"), 0.0); // a hard outline
    EXPECT_EQ(doubleOf(conceal, "pixelSize"), 0.5);  // the first of two; the second:
    EXPECT_EQ(Archive::readValue(conceal.lastChildElement("pixelSize"), -1.0), 0.0);

    const std::map<QString, double> placement = {{"m11", 0.5},  {"m22", 0.5}, {"m31", 0.0},
                                                 {"m32", 0.25}, {"m33", 1.0}, {"m12", 0.0}};
    for (const QDomElement& frame : {highlight, conceal}) {
        const QDomElement base = frame.firstChildElement("BaseOfObject");
        EXPECT_EQ(childNames(base),
                  QStringList({"shape", "transform", "outline", "trackingId", "trackingTransform"}));
        EXPECT_EQ(Archive::valueOf(base, "shape"), "5");
        for (const auto& [name, number] : placement)
            EXPECT_EQ(doubleOf(base.firstChildElement("transform"), name), number) << name.toStdString();
        EXPECT_EQ(doubleOf(base.firstChildElement("trackingTransform"), "m11"), 1.0);
        EXPECT_EQ(doubleOf(base.firstChildElement("trackingTransform"), "m32"), 0.0);
    }
}

TEST_F(MaskPairTest, RecordsDeclareWhatIsThere) {
    const QString maskId = m_mask.attribute("objectId");
    QStringList frameIds;
    for (const char* array : {"highlightFrames", "concealFrames"}) {
        const QDomElement frame = frameIn(array);
        frameIds.append(frame.attribute("objectId"));
        const QDomElement base = frame.firstChildElement("BaseOfObject");
        const QDomElement record = recordOfObject(frame.attribute("objectId"));
        // Also the conceal frame's, whose object says otherwise.
        EXPECT_EQ(Archive::valueOf(record, "typeName"), "Effect::FrameHighlight");
        EXPECT_EQ(Archive::valueOf(record, "poid"), maskId);
        EXPECT_EQ(refsOf(record),
                  QStringList({base.firstChildElement("transform").attribute("objectId"),
                               base.firstChildElement("trackingTransform").attribute("objectId")}));
        const QDomElement tracking =
            recordOfObject(base.firstChildElement("trackingTransform").attribute("objectId"));
        EXPECT_EQ(Archive::valueOf(tracking, "typeName"), "Types::Transform");
        EXPECT_EQ(Archive::valueOf(tracking, "poid"), frame.attribute("objectId"));
    }
    EXPECT_EQ(Archive::valueOf(recordOfObject(maskId), "typeName"), "Effect::Mask");
    EXPECT_EQ(refsOf(recordOfObject(maskId)), frameIds);
    for (const char* gone : {"10", "11", "20", "21"})
        EXPECT_TRUE(recordOfObject(gone).isNull()) << gone;
}

TEST_F(MaskPairTest, RecordsAreCountedAndNumbered) {
    const QDomElement list = elements(m_document, "predeclarations").front();
    const auto items = children(list, "Item");
    EXPECT_EQ(items.size(), 8U); // the clip; frame and two transforms of each mask; the mask
    EXPECT_EQ(list.attribute("size"), "8");
    for (std::size_t i = 0; i < items.size(); ++i)
        EXPECT_EQ(items[i].attribute("index"), QString::number(i + 1));
}

} // namespace
