// Changes of style in a document: adjustable points, attributes and gradients.

#include "Stored/V21/SvgDocument.h"
#include "support/Svg.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Stored::V21;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Tests::leaf;
using Tests::live;

namespace {

std::vector<QString> namesOf(const SvgDocument& document, const QString& attribute) {
    std::vector<QString> ids;
    for (const auto& adjustable : document.adjustable().at(attribute))
        ids.push_back(adjustable->id);
    return ids;
}

// Adjustable points.

TEST(SvgAdjustablePoints, NeedIdAndBothCoordinates) {
    const SvgDocument document(
        "<svg><adjustablePoint id='a' posX='1' posY='2'/><adjustablePoint posX='1' posY='2'/>"
        "<adjustablePoint id='b' posX='' posY='2'/><adjustablePoint id='c' posX='1'/>"
        "<g><adjustablePoint id='d' posX='x' posY='y'/></g></svg>");
    ASSERT_THAT(document.adjustablePoints(), SizeIs(2));
    EXPECT_EQ(document.adjustablePoints()[0]->id, "a");
    EXPECT_THAT(document.adjustablePoints()[1]->path, ElementsAre(4, 0));
}

const QString pointed = "<svg><adjustablePoint id='p' posX='10' posY='20'/>"
                        "<line><animate attributeName='x1' values='p.posX;p.posY' begin='1s' dur='2s' "
                        "repeatCount='2' calcMode='discrete' fill='freeze'/></line></svg>";

TEST(SvgAdjustablePoints, AreFilledInWhereAnimationsNameThem) {
    const SvgDocument document(pointed);
    const auto* point = leaf<AnimatableAttributeAdjustablePoint>(document.animations().at(0));
    ASSERT_TRUE(point);
    const auto* inner = leaf<AnimatableAttributeFloat>(point->inner);
    ASSERT_TRUE(inner);
    EXPECT_THAT(inner->values, ElementsAre(10, 20));
    EXPECT_EQ(inner->beginMs, 1000);
    EXPECT_EQ(inner->endMs, 3000);
    EXPECT_EQ(inner->repeatCount, 2);
    EXPECT_TRUE(inner->freeze);
    EXPECT_FALSE(inner->interpolated);
    EXPECT_THAT(inner->element.path, ElementsAre(1));
    // The live document itself still has the names.
    EXPECT_EQ(document.content(), pointed.toUtf8());
    EXPECT_EQ(document.dom().elementsByTagName("animate").item(0).toElement().attribute("values"),
              "p.posX;p.posY");
}

TEST(SvgAdjustablePoints, AreFilledIntoNumberLists) {
    const SvgDocument document(
        "<svg><adjustablePoint id='p' posX='10' posY='20'/><path><animate attributeName='d' "
        "values='M p.posX p.posY;M 1 2'/></path></svg>");
    const auto* point = leaf<AnimatableAttributeAdjustablePoint>(document.animations().at(0));
    const auto* inner = leaf<AnimatableAttributeFloatList>(point->inner);
    ASSERT_TRUE(inner);
    ASSERT_EQ(inner->values.size(), 2);
    EXPECT_THAT(inner->values[0], ElementsAre(10, 20));
}

TEST(SvgAdjustablePoints, AreFilledInOneAfterTheOther) {
    // "a.posX" becomes "b.posX", which the next point replaces.
    const SvgDocument document(
        "<svg><adjustablePoint id='a' posX='b.posX' posY='1'/><adjustablePoint id='b' posX='7' "
        "posY='1'/><line><animate attributeName='x1' values='a.posX;2'/></line></svg>");
    const auto* point = leaf<AnimatableAttributeAdjustablePoint>(document.animations().at(0));
    EXPECT_THAT(leaf<AnimatableAttributeFloat>(point->inner)->values, ElementsAre(7, 2));
}

TEST(SvgAdjustablePoints, AreFilledInWhereverTheirNamesOccur) {
    // "ba.posX" contains "a.posX", and "a" is the first point.
    const SvgDocument document(
        "<svg><adjustablePoint id='a' posX='10' posY='20'/><adjustablePoint id='ba' posX='7' posY='8'/>"
        "<path><animate attributeName='d' values='M ba.posX ba.posY;M 1 2'/></path></svg>");
    const auto* point = leaf<AnimatableAttributeAdjustablePoint>(document.animations().at(0));
    const auto* inner = leaf<AnimatableAttributeFloatList>(point->inner);
    ASSERT_TRUE(inner);
    EXPECT_THAT(inner->separators, ElementsAre("M b", " b"));
    ASSERT_EQ(inner->values.size(), 2);
    EXPECT_THAT(inner->values[0], ElementsAre(10, 20));
}

TEST(SvgAdjustablePoints, MayHaveNamesAndPositionsInAnyScript) {
    SvgDocument document(QString::fromUtf8(
        "<svg><adjustablePoint id='\xc3\xa9' posX='10' posY='\xe4\xb8\xad 5'/><path>"
        "<animate attributeName='d' values='M \xc3\xa9.posX \xc3\xa9.posY'/></path></svg>"));
    const auto* point = leaf<AnimatableAttributeAdjustablePoint>(document.animations().at(0));
    const auto* inner = leaf<AnimatableAttributeFloatList>(point->inner);
    ASSERT_TRUE(inner);
    EXPECT_THAT(inner->separators, ElementsAre("M ", QString::fromUtf8(" \xe4\xb8\xad ")));
}

TEST(SvgAdjustablePoints, OneCoordinateMayBeNamedAlone) {
    for (const char* name : {"posX", "posY"}) {
        const SvgDocument document(
            QString("<svg><adjustablePoint id='p' posX='3' posY='3'/><line><animate attributeName='x' "
                    "values='p.%1;q.%1'/></line></svg>")
                .arg(name));
        const auto* point = leaf<AnimatableAttributeAdjustablePoint>(document.animations().at(0));
        ASSERT_TRUE(leaf<AnimatableAttributeFloat>(point->inner)) << name;
        EXPECT_THAT(leaf<AnimatableAttributeFloat>(point->inner)->values, ElementsAre(3, 0)) << name;
    }
}

TEST(SvgAdjustablePoints, AChangeUpdatesTheAnimations) {
    SvgDocument document(pointed);
    document.collectAdjustableAttributes({"posX", "posY"});
    document.setAttributeValue("posX", "33", "p");
    const auto* point = leaf<AnimatableAttributeAdjustablePoint>(document.animations().at(0));
    EXPECT_THAT(leaf<AnimatableAttributeFloat>(point->inner)->values, ElementsAre(33, 20));
    EXPECT_EQ(live(document, "p", "posX"), "33");
    document.setAttributeValue("posY", "44", "p");
    EXPECT_THAT(leaf<AnimatableAttributeFloat>(point->inner)->values, ElementsAre(33, 44));
}

TEST(SvgAdjustablePoints, AreRefreshedWheneverTheNameHasAnEntry) {
    // No element has the attribute, so nothing is set, but the animations are read again.
    SvgDocument document("<svg><line><animate attributeName='x1' values='1;p.posX'/></line></svg>");
    const auto* point = leaf<AnimatableAttributeAdjustablePoint>(document.animations().at(0));
    document.setAttributeValue("posX", "5", "");
    EXPECT_FALSE(point->inner); // no entry yet
    document.collectAdjustableAttributes({"posX", "fill"});
    document.setAttributeValue("fill", "red", "");
    EXPECT_FALSE(point->inner); // another name
    document.setAttributeValue("posX", "5", "");
    ASSERT_TRUE(leaf<AnimatableAttributeFloat>(point->inner));
    EXPECT_THAT(leaf<AnimatableAttributeFloat>(point->inner)->values, ElementsAre(1, 0));
}

TEST(SvgAdjustablePoints, OneThatBreaksTheCopyDoesNotChangeTheDocument) {
    const SvgDocument document("<svg><adjustablePoint id='p' posX='&lt;&quot;' posY='1'/><line><animate "
                               "attributeName='x1' values='p.posX;p.posY'/></line></svg>");
    EXPECT_EQ(document.dom().documentElement().childNodes().length(), 2);
    EXPECT_TRUE(leaf<AnimatableAttributeAdjustablePoint>(document.animations().at(0))->inner);
}

TEST(SvgAdjustablePoints, OneThatBreaksTheCopyBeforeTheAnimationRemovesItsPosition) {
    const SvgDocument document("<svg><adjustablePoint id='p' posX='&lt;&quot;' posY='1'/><g title='p.posX'/>"
                               "<line><animate attributeName='x1' values='p.posX;p.posY'/></line></svg>");
    const auto* point = leaf<AnimatableAttributeAdjustablePoint>(document.animations().at(0));
    EXPECT_THAT(point->element.path, ElementsAre(2));
    const auto* inner = leaf<AnimatableAttributeFloatList>(point->inner);
    ASSERT_TRUE(inner);
    EXPECT_THAT(inner->element.path, IsEmpty());
    EXPECT_EQ(inner->name, "x1");
}

TEST(SvgAdjustablePoints, CollectingNeedsTheTagInTheTextAsGiven) {
    EXPECT_THAT(SvgDocument("<svg>word<adjustablePoint id='a' posX='1' posY='2'/></svg>").adjustablePoints(),
                IsEmpty());
}

// Adjustable attributes.

TEST(SvgAdjustable, ListsTheRootAndAllDescendantsInDocumentOrder) {
    SvgDocument document(
        "<svg id='s' fill='red'><g id='g' fill=''><a id='a' fill='#123'/></g><b id='b' fill='blue' "
        "stroke='red'/></svg>");
    document.collectAdjustableAttributes({"fill", "stroke", "posX"});
    EXPECT_THAT(namesOf(document, "fill"), ElementsAre("s", "g", "a", "b"));
    EXPECT_THAT(namesOf(document, "stroke"), ElementsAre("b"));
    EXPECT_THAT(namesOf(document, "posX"), IsEmpty()); // an entry without attributes
    EXPECT_EQ(document.adjustable().at("fill")[2]->value, "#123");
    EXPECT_EQ(document.adjustable().at("fill")[2]->name, "fill");
    EXPECT_THAT(document.adjustable().at("fill")[2]->element.path, ElementsAre(0, 0));
}

TEST(SvgAdjustable, CollectingAgainReplacesTheList) {
    SvgDocument document("<svg fill='red'/>");
    document.collectAdjustableAttributes({"fill", "fill"});
    EXPECT_THAT(document.adjustable().at("fill"), SizeIs(1));
    document.collectAdjustableAttributes({"stroke"});
    EXPECT_THAT(document.adjustable(), SizeIs(1));
}

TEST(SvgAdjustable, RetainInTheIdKeepsThatAttribute) {
    SvgDocument document("<svg><a id='xretainfill' fill='red' stroke='red'/><a id='RetainStroke' fill='red' "
                         "stroke='red'/><a id='retain' fill='red'/><a id='retain-fill' fill='red'/>"
                         "<a id='retainfill-opacity' fill='red' fill-opacity='1'/></svg>");
    document.collectAdjustableAttributes({"fill", "stroke", "fill-opacity"});
    EXPECT_THAT(namesOf(document, "fill"), ElementsAre("RetainStroke", "retain", "retain-fill"));
    EXPECT_THAT(namesOf(document, "stroke"), ElementsAre("xretainfill"));
    EXPECT_THAT(namesOf(document, "fill-opacity"), IsEmpty());
}

TEST(SvgAdjustable, TheFillOfAnAnimationIsNoPaint) {
    SvgDocument document(
        "<svg><animate id='1' fill='freeze' stroke='red'/><animateMotion fill='freeze'/>"
        "<animateColor fill='freeze'/><animateTransform fill='freeze'/><set id='2' fill='freeze'/>"
        "</svg>");
    document.collectAdjustableAttributes({"fill", "stroke"});
    EXPECT_THAT(namesOf(document, "fill"), ElementsAre("2"));
    EXPECT_THAT(namesOf(document, "stroke"), ElementsAre("1"));
}

TEST(SvgAdjustable, PaintsThatAreReferencesAreKept) {
    SvgDocument document(
        "<svg><a fill='none'/><a fill='currentColor'/><a fill='inherit'/><a fill='url(#g)'/>"
        "<a id='1' fill='None'/><a id='2' fill=' url(#g)'/><a id='3' fill-opacity='inherit'/>"
        "<a stroke='urlaub'/></svg>");
    document.collectAdjustableAttributes({"fill", "fill-opacity", "stroke"});
    EXPECT_THAT(namesOf(document, "fill"), ElementsAre("1", "2"));
    EXPECT_THAT(namesOf(document, "fill-opacity"), ElementsAre("3"));
    EXPECT_THAT(namesOf(document, "stroke"), IsEmpty());
}

TEST(SvgAdjustable, ClipPathsKeepTheirStyleAndDefsDoNot) {
    SvgDocument document(
        "<svg><clipPath id='c' fill='red'><g><a id='1' fill='red' stroke='red' stroke-opacity='1' "
        "fill-opacity='1' stroke-width='1' posX='1' posY='1'/></g></clipPath>"
        "<defs><a id='2' fill='red'/></defs></svg>");
    document.collectAdjustableAttributes(
        {"fill", "stroke", "stroke-opacity", "fill-opacity", "stroke-width", "posX", "posY"});
    EXPECT_THAT(namesOf(document, "fill"), ElementsAre("c", "2"));
    for (const char* name : {"stroke", "stroke-opacity", "fill-opacity", "stroke-width"})
        EXPECT_THAT(namesOf(document, name), IsEmpty()) << name;
    EXPECT_THAT(namesOf(document, "posX"), ElementsAre("1"));
    EXPECT_THAT(namesOf(document, "posY"), ElementsAre("1"));
}

TEST(SvgAdjustable, SettingChangesAllOrOneId) {
    SvgDocument document(
        "<svg id='s' fill='red'><a id='x' fill='red'/><b id='x' fill='red'/><c fill='red'/></svg>");
    document.collectAdjustableAttributes({"fill"});
    document.setAttributeValue("fill", "blue", "x");
    EXPECT_EQ(live(document, "s", "fill"), "red");
    EXPECT_EQ(document.content(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                  "<svg fill=\"red\" id=\"s\">\n"
                                  " <a fill=\"blue\" id=\"x\"/>\n"
                                  " <b fill=\"blue\" id=\"x\"/>\n"
                                  " <c fill=\"red\"/>\n"
                                  "</svg>\n");
    document.setAttributeValue("fill", "lime", "");
    EXPECT_EQ(live(document, "s", "fill"), "lime");
    EXPECT_EQ(document.dom().documentElement().lastChildElement().attribute("fill"), "lime");
    EXPECT_EQ(document.content().count("lime"), 4);
    // The entry keeps the value that it has read.
    EXPECT_EQ(document.adjustable().at("fill")[0]->value, "red");
}

TEST(SvgAdjustable, SettingWithoutAHitSavesNothing) {
    const QString text = "<svg   fill='red'/>";
    SvgDocument document(text);
    document.setAttributeValue("fill", "blue", ""); // not collected
    document.collectAdjustableAttributes({"fill", "stroke"});
    document.setAttributeValue("fill", "blue", "nobody");
    document.setAttributeValue("stroke", "blue", "");
    document.setAttributeValue("width", "1", "");
    EXPECT_EQ(document.content(), text.toUtf8());
}

// Gradients.

TEST(SvgGradients, EachStopHasItsDifferenceToThePreviousOne) {
    SvgDocument document("<svg><linearGradient id='g'><stop stop-color='#102030'/><stop/><g><stop "
                         "stop-color='#203010'/></g><stop stop-color='#213111'/></linearGradient></svg>");
    document.collectGradientStops();
    std::map<QString, std::vector<int>> offsets;
    for (const auto& [stop, difference] : document.gradientStops()) {
        EXPECT_EQ(stop->name, "stop-color");
        EXPECT_EQ(stop->id, "g");
        offsets[stop->value] = difference;
    }
    EXPECT_THAT(offsets, SizeIs(3));
    EXPECT_THAT(offsets["#102030"], ElementsAre(0, 0, 0));
    EXPECT_THAT(offsets["#203010"], ElementsAre(16, 16, -32));
    EXPECT_THAT(offsets["#213111"], ElementsAre(1, 1, 1)); // not (17, 17, -31)
}

TEST(SvgGradients, DifferencesRestartAtEachGradientAndInvalidColour) {
    SvgDocument document(
        "<svg><linearGradient><stop stop-color='#101010'/></linearGradient><linearGradient>"
        "<stop stop-color='#202020'/><stop stop-color='currentColor'/><stop stop-color='#303030'/>"
        "</linearGradient></svg>");
    document.collectGradientStops();
    std::map<QString, std::vector<int>> offsets;
    for (const auto& [stop, difference] : document.gradientStops())
        offsets[stop->value] = difference;
    EXPECT_THAT(offsets["#202020"], ElementsAre(0, 0, 0));
    EXPECT_THAT(offsets["currentColor"], ElementsAre(-32, -32, -32)); // an invalid colour is black
    EXPECT_THAT(offsets["#303030"], ElementsAre(0, 0, 0));
}

TEST(SvgGradients, RetainInTheIdAndRadialOnesAreSkipped) {
    SvgDocument document("<svg><linearGradient id='gRETAINx'><stop stop-color='red'/></linearGradient>"
                         "<radialGradient><stop stop-color='red'/></radialGradient></svg>");
    document.collectGradientStops();
    EXPECT_THAT(document.gradientStops(), IsEmpty());
    const QByteArray before = document.content();
    document.applyColorToGradients(Qt::blue);
    EXPECT_EQ(document.content(), before);
}

TEST(SvgGradients, AreSetToAColourPlusTheirDifferences) {
    SvgDocument document(
        "<svg><linearGradient><stop id='1' stop-color='#102030'/><stop id='2' stop-color='#203010'/>"
        "<stop id='3' stop-color='#ffffff'/></linearGradient></svg>");
    document.collectGradientStops();
    document.applyColorToGradients(QColor(0x80, 0xf8, 0x10, 0x40));
    EXPECT_EQ(live(document, "1", "stop-color"), "#80f810");
    EXPECT_EQ(live(document, "2", "stop-color"), "#90ff00"); // f8 + 10 and 10 - 20 are clamped
    EXPECT_EQ(live(document, "3", "stop-color"), "#ffffff");
    EXPECT_TRUE(document.content().contains("#90ff00"));
}

TEST(SvgGradients, CollectingAgainReplacesTheList) {
    SvgDocument document("<svg><linearGradient><stop stop-color='red'/></linearGradient></svg>");
    document.collectGradientStops();
    document.collectGradientStops();
    EXPECT_THAT(document.gradientStops(), SizeIs(1));
}

TEST(SvgGradients, AStopInTwoGradientsUsesTheInnerOne) {
    // In the outer gradient the stop follows another one and has a difference; in the inner one it is the
    // first.
    SvgDocument document("<svg><linearGradient><stop stop-color='#000000'/><linearGradient><stop id='i' "
                         "stop-color='#010101'/></linearGradient></linearGradient></svg>");
    document.collectGradientStops();
    EXPECT_THAT(document.gradientStops(), SizeIs(3));
    document.applyColorToGradients(QColor("#202020"));
    EXPECT_EQ(live(document, "i", "stop-color"), "#202020");
}

} // namespace
