// The effect steps on documents of many clips.

#include "Archive/Internal/Walk.h"
#include "Reader/AdaptorTable.h"
#include "support/Documents.h"

#include <gtest/gtest.h>

#include <QDomDocument>
#include <QTextStream>

#include <ctime>

using Archive::Internal::elements;
using Archive::Internal::rootObjects;

namespace {

void writeRecord(QTextStream& out, int index, const char* className, int id) {
    out << R"(<Item type="Item" index=")" << index << R"("><Data type="Predeclare" objectId=")"
        << 1000000 + id << R"("><typeName type="String" value=")" << className
        << R"("/><oid type="ObjectRef" value=")" << id
        << R"("/><poid type="ObjectRef" value="0"/><refs type="Array" size="0"/></Data></Item>)";
}

void writeEffect(QTextStream& out, const char* className, int id, const char* fields) {
    out << R"(<RootObject type=")" << className << R"(" objectId=")" << id
        << R"("><BaseOfObject type="E" objectId=")" << id
        << R"("><BaseOfObject type="Effect::Object" objectId=")" << id
        << R"("><uniqueId type="String" value=""/></BaseOfObject></BaseOfObject>)" << fields
        << "</RootObject>";
}

/// Clips with three effects each: a chroma key, a crop and an automatic enhancement.
QDomDocument documentOf(int clips) {
    QString text;
    QTextStream out(&text);
    out << R"(<Archive><RootObject type="Predeclarator" objectId="2"><predeclarations type="Array" size=")"
        << 4 * clips << R"(">)";
    for (int clip = 0; clip < clips; ++clip) {
        const int id = 10 + 5 * clip;
        writeRecord(out, 4 * clip + 1, "Effect::ChromaKey", id + 1);
        writeRecord(out, 4 * clip + 2, "Effect::Crop", id + 2);
        writeRecord(out, 4 * clip + 3, "Types::Rect", id + 3);
        writeRecord(out, 4 * clip + 4, "Effect::AutoEnhance", id + 4);
    }
    out << "</predeclarations></RootObject>";
    for (int clip = 0; clip < clips; ++clip) {
        const int id = 10 + 5 * clip;
        out << R"(<RootObject type="Timeline::Clip" objectId=")" << id
            << R"("><type type="int32_t" value="1"/><angle type="int32_t" value="90"/>)"
            << R"(<effects type="Array" size="3">)";
        int index = 0;
        for (const int effect : {id + 1, id + 4, id + 2})
            out << R"(<Item type="Item" index=")" << ++index << R"("><Data type="ObjectRef" value=")"
                << effect << R"("/></Item>)";
        out << "</effects></RootObject>";
        writeEffect(out, "Effect::ChromaKey", id + 1, "");
        const QByteArray rect =
            R"(<rect type="Types::Rect" objectId=")" + QByteArray::number(id + 3) + R"("/>)";
        writeEffect(out, "Effect::Crop", id + 2, rect.constData());
        writeEffect(out, "Effect::AutoEnhance", id + 4,
                    R"(<magicEnhance type="bool" value="1"/><autoContrast type="bool" value="1"/>)");
    }
    out << "</Archive>";
    return Tests::xml(text.toStdString());
}

/// The processor time, in seconds, of all XML steps here on such a document.
double timeOfSteps(QDomDocument& document) {
    const std::clock_t start = std::clock();
    for (const char* step : {"V4_EffectNamespaceAdaptor", "V4_TransposeEffectAdaptor",
                             "V8_ChromaKeyPiPAdaptor", "V14_CropEffectAdaptor", "V32_ColorFiltersAdaptor",
                             "V33_EffectIntensityAdaptor", "V41_CutawayToPictureInPictureAdaptor"})
        Reader::findAdaptor(step)->makeXml()->adapt(document);
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

TEST(ManyEffectsTest, EveryClipIsConverted) {
    const unsigned clips = 1000;
    QDomDocument document = documentOf(int(clips));
    timeOfSteps(document);

    EXPECT_EQ(rootObjects(document, "Effect::Transpose").size(), clips);
    EXPECT_EQ(rootObjects(document, "Effect::PictureInPicture").size(), clips);
    EXPECT_EQ(rootObjects(document, "Effect::MagicEnhance").size(), clips);
    EXPECT_EQ(rootObjects(document, "Effect::AutoContrast").size(), clips);
    EXPECT_TRUE(rootObjects(document, "Effect::AutoEnhance").empty());
    EXPECT_TRUE(elements(document, "rect").empty());
    EXPECT_EQ(elements(document, "transform").size(), 2 * clips);
    EXPECT_EQ(elements(document, "intensity").size(), 6 * clips);
    // Per clip: chroma key, crop and its matrix; transposition; cutaway and its matrix; two filters.
    EXPECT_EQ(elements(document, "predeclarations").front().attribute("size").toUInt(), 8 * clips);
    for (const QDomElement& clip : rootObjects(document, "Timeline::Clip"))
        ASSERT_EQ(clip.firstChildElement("effects").attribute("size"), "6");
}

TEST(ManyEffectsTest, CostGrowsInLineWithTheDocument) {
    QDomDocument small = documentOf(250);
    QDomDocument large = documentOf(16 * 250);
    const double timeOfSmall = timeOfSteps(small);
    // 16 times if the cost is linear, 256 times if it is quadratic.
    EXPECT_LT(timeOfSteps(large), 64 * timeOfSmall);
}

TEST(ManyEffectsTest, OneClipListsThemAll) {
    const int effects = 2000;
    QString text;
    QTextStream out(&text);
    out << R"(<Archive><RootObject type="Timeline::Clip" objectId="1"><effects type="Array" size=")"
        << effects << R"(">)";
    for (int number = 1; number <= effects; ++number)
        out << R"(<Item type="Item" index=")" << number << R"("><Data type="ObjectRef" value=")" << number + 1
            << R"("/></Item>)";
    out << "</effects></RootObject>";
    for (int number = 1; number <= effects; ++number)
        writeEffect(out, "Effect::AutoEnhance", number + 1, R"(<autoContrast type="bool" value="1"/>)");
    out << "</Archive>";
    QDomDocument document = Tests::xml(text.toStdString());

    Reader::findAdaptor("V32_ColorFiltersAdaptor")->makeXml()->adapt(document);
    // Only the item of the last one is removed.
    const QDomElement list = Archive::Internal::firstDescendant(document, "effects");
    EXPECT_EQ(list.attribute("size").toInt(), 2 * effects - 1);
    EXPECT_EQ(list.lastChildElement().attribute("index").toInt(), 2 * effects - 1);
}

} // namespace
