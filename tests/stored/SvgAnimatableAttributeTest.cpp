#include "Stored/V21/AnimatableAttribute.h"
#include "Stored/V21/Internal/Time.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDomDocument>

#include <limits>

using namespace Stored::V21;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

AnimatableAttributeFloatList listOf(const QStringList& keyValues) {
    return AnimatableAttributeFloatList(SvgElement(), QDomNode(), QStringLiteral("d"), keyValues);
}

TEST(SvgTime, MillisecondsSecondsAndBareNumbers) {
    EXPECT_EQ(Internal::timeMs("500ms"), 500);
    EXPECT_EQ(Internal::timeMs("2s"), 2000);
    EXPECT_EQ(Internal::timeMs("2"), 2000);
    EXPECT_EQ(Internal::timeMs("  1.5s\n"), 1500);
    EXPECT_EQ(Internal::timeMs("-1s"), -1000);
    EXPECT_EQ(Internal::timeMs("1e3ms"), 1000);
}

TEST(SvgTime, IsCutTowardsZero) {
    EXPECT_EQ(Internal::timeMs("1.9ms"), 1);
    EXPECT_EQ(Internal::timeMs("-1.9ms"), -1);
    EXPECT_EQ(Internal::timeMs("0.0019"), 1);
}

TEST(SvgTime, SuffixesAreLowerCase) {
    EXPECT_EQ(Internal::timeMs("2S"), 0);
    EXPECT_EQ(Internal::timeMs("2MS"), 0);
    EXPECT_EQ(Internal::timeMs("2Ms"), 0); // a final "s" is cut, "2M" is left
}

TEST(SvgTime, WhatIsNoNumberIsZero) {
    for (const char* text : {"", " ", "s", "ms", "indefinite", "1min", "00:01", "1 2s", "click", "nan"})
        EXPECT_EQ(Internal::timeMs(text), 0) << text;
}

TEST(SvgTime, OutOfThirtyTwoBitsIsTheNearestInRange) {
    EXPECT_EQ(Internal::timeMs("1e300"), std::numeric_limits<int>::max());
    EXPECT_EQ(Internal::timeMs("-99999999999s"), std::numeric_limits<int>::min());
    EXPECT_EQ(Internal::timeMs("inf"), std::numeric_limits<int>::max());
}

TEST(SvgTime, WhatCanNotBeConvertedIsZeroHoweverGreat) {
    for (const char* text : {"1e999", "1e999s", "1e999ms", "-1e999ms", "1e-999"})
        EXPECT_EQ(Internal::timeMs(text), 0) << text;
}

TEST(SvgAnimatableAttribute, HasItsDefaults) {
    const AnimatableAttribute attribute(SvgElement(), QDomNode(), QStringLiteral("x"));
    EXPECT_EQ(attribute.name, "x");
    EXPECT_EQ(attribute.id, "");
    EXPECT_TRUE(attribute.freeze);
    EXPECT_EQ(attribute.repeatCount, 1);
    EXPECT_EQ(attribute.beginMs, 0);
    EXPECT_EQ(attribute.endMs, 0);
    EXPECT_TRUE(attribute.interpolated);
    EXPECT_EQ(attribute.valueCount, 0);
}

TEST(SvgAnimatableAttribute, RefreshDoesNothing) {
    AnimatableAttributeFloat attribute(SvgElement(), QDomNode(), "x", {"1", "2"});
    attribute.refresh(QDomNode());
    EXPECT_THAT(attribute.values, ElementsAre(1, 2));
}

TEST(SvgAnimatableAttribute, ReadsTheValueOfTheElement) {
    QDomDocument dom;
    dom.setContent(QStringLiteral("<svg><rect width='7'/></svg>"));
    const QDomElement root = dom.documentElement();
    EXPECT_EQ(AdjustableAttribute(root.firstChild(), root, "width", "w").value, "7");
    EXPECT_EQ(AdjustableAttribute(root.firstChild(), root, "width", "w").id, "w");
    EXPECT_EQ(AdjustableAttribute(root.firstChild(), root, "height", "").value, "");
    EXPECT_THAT(AdjustableAttribute(root.firstChild(), root, "height", "").element.path, ElementsAre(0));
}

TEST(SvgAnimatableAttribute, FloatsAreNotChecked) {
    const AnimatableAttributeFloat attribute(SvgElement(), QDomNode(), "x", {" 1.5 ", "two", "", "-3"});
    EXPECT_THAT(attribute.values, ElementsAre(1.5, 0, 0, -3));
    EXPECT_EQ(attribute.valueCount, 4);
}

TEST(SvgAnimatableAttribute, ColoursMayBeInvalid) {
    const AnimatableAttributeColor attribute(SvgElement(), QDomNode(), "fill", {" red ", "#00f", "nocolour"});
    ASSERT_EQ(attribute.values.size(), 3);
    EXPECT_EQ(attribute.values[0], QColor(255, 0, 0));
    EXPECT_EQ(attribute.values[1], QColor(0, 0, 255));
    EXPECT_FALSE(attribute.values[2].isValid());
    EXPECT_EQ(attribute.valueCount, 3);
}

TEST(SvgAnimatableAttribute, TextsAreTrimmed) {
    const AnimatableAttributeText attribute(SvgElement(), QDomNode(), "visibility",
                                            {" hidden", "visible ", ""});
    EXPECT_EQ(attribute.values, QStringList({"hidden", "visible", ""}));
    EXPECT_EQ(attribute.valueCount, 3);
}

TEST(SvgNumberList, PathThatEndsInANumber) {
    const auto list = listOf({"M0 0L10,20", " M1 2L11,22 "});
    EXPECT_FALSE(list.startsWithNumber);
    EXPECT_THAT(list.separators, ElementsAre("M", " ", "L", ","));
    ASSERT_EQ(list.values.size(), 2);
    EXPECT_THAT(list.values[0], ElementsAre(0, 0, 10, 20));
    EXPECT_THAT(list.values[1], ElementsAre(1, 2, 11, 22));
    EXPECT_EQ(list.valueCount, 2);
}

TEST(SvgNumberList, PathThatEndsInALetter) {
    const auto list = listOf({"1 2 Z", "3 4 Z"});
    EXPECT_TRUE(list.startsWithNumber);
    EXPECT_THAT(list.separators, ElementsAre(" ", " Z")); // the sentinel ends the last one
    ASSERT_EQ(list.values.size(), 2);
    EXPECT_THAT(list.values[1], ElementsAre(3, 4));
}

TEST(SvgNumberList, ASeparatorIsAWholeRun) {
    EXPECT_THAT(listOf({"1 , L 2"}).separators, ElementsAre(" , L "));
}

TEST(SvgNumberList, TheFirstValueDecidesHowTheOthersEnd) {
    // The first ends in a letter, so "0" is appended: the last number of the second becomes 40 and has no
    // end.
    EXPECT_THAT(listOf({"1 2Z", "3 4"}).values, IsEmpty());
    // The first ends in a number, so "#" is appended, which is harmless after a letter.
    EXPECT_EQ(listOf({"1 2", "3 4Z"}).valueCount, 2);
}

TEST(SvgNumberList, DifferentLengthsEmptyTheList) {
    const auto list = listOf({"1 2", "3 4 5"});
    EXPECT_THAT(list.values, IsEmpty());
    EXPECT_EQ(list.valueCount, 0);
    EXPECT_THAT(list.separators, ElementsAre(" "));
}

TEST(SvgNumberList, ABadNumberEmptiesTheList) {
    EXPECT_THAT(listOf({"1 2", "3 4.5.6"}).values, IsEmpty());
    EXPECT_THAT(listOf({"1-2", "3-4"}).values, IsEmpty()); // "-" is part of a number, so "1-2" is none
    EXPECT_THAT(listOf({"- 2"}).values, IsEmpty());
}

TEST(SvgNumberList, ADigitOfAnotherScriptBelongsToANumberThatIsNone) {
    const auto list = listOf({QString::fromUtf8("1 \xd9\xa1")}); // an Arabic one
    EXPECT_THAT(list.separators, ElementsAre(" "));
    EXPECT_THAT(list.values, IsEmpty());
}

TEST(SvgNumberList, ANumberThatIsTooGreatIsNone) {
    EXPECT_THAT(listOf({"1 " + QString(400, '9')}).values, IsEmpty());
}

TEST(SvgNumberList, AnExponentSplitsANumber) {
    const auto list = listOf({"1e5 2"});
    EXPECT_THAT(list.separators, ElementsAre("e", " "));
    ASSERT_EQ(list.values.size(), 1);
    EXPECT_THAT(list.values[0], ElementsAre(1, 5, 2));
}

TEST(SvgNumberList, AnEmptyFirstValueHasNoNumberAtEitherEnd) {
    const auto list = listOf({"", "5 "});
    EXPECT_FALSE(list.startsWithNumber);
    EXPECT_THAT(list.separators, IsEmpty());
    // The sentinel is "0": no number ends in "0" and "50".
    ASSERT_EQ(list.values.size(), 2);
    EXPECT_THAT(list.values[0], IsEmpty());
    EXPECT_THAT(list.values[1], IsEmpty());
    EXPECT_EQ(list.valueCount, 2);
}

TEST(SvgNumberList, WithoutNumbersHasEmptyVectors) {
    const auto list = listOf({"#", "#"});
    EXPECT_EQ(list.valueCount, 2);
    EXPECT_THAT(list.values[0], IsEmpty());
    EXPECT_THAT(list.separators, ElementsAre("#"));
}

TEST(SvgAdjustablePointAttribute, RefreshMakesAFloatFromANumber) {
    QDomDocument dom;
    dom.setContent(QStringLiteral("<svg><g/><line x1='3'><animate from='10' to='20'/></line></svg>"));
    const QDomElement root = dom.documentElement();
    const QDomNode line = root.lastChild();
    AnimatableAttributeAdjustablePoint point(SvgElement(line, root), line, "x1",
                                             SvgElement(line.firstChild(), root));
    EXPECT_FALSE(point.inner);
    point.freeze = false;
    point.repeatCount = 4;
    point.beginMs = 100;
    point.endMs = 300;
    point.interpolated = false;
    point.refresh(root);

    const auto* inner = dynamic_cast<AnimatableAttributeFloat*>(point.inner.get());
    ASSERT_TRUE(inner);
    EXPECT_THAT(inner->values, ElementsAre(10, 20));
    EXPECT_EQ(inner->valueCount, 2);
    EXPECT_EQ(inner->name, "x1");
    EXPECT_EQ(inner->value, "3");
    EXPECT_THAT(inner->element.path, ElementsAre(1));
    EXPECT_FALSE(inner->freeze);
    EXPECT_EQ(inner->repeatCount, 4);
    EXPECT_EQ(inner->beginMs, 100);
    EXPECT_EQ(inner->endMs, 300);
    EXPECT_FALSE(inner->interpolated);
    EXPECT_EQ(point.valueCount, 0);
}

TEST(SvgAdjustablePointAttribute, RefreshMakesAListFromAnythingElse) {
    QDomDocument dom;
    dom.setContent(QStringLiteral("<svg><path><animate values='M1 2;M3 4' from='9' to='9'/></path></svg>"));
    const QDomElement root = dom.documentElement();
    const QDomNode path = root.firstChild();
    AnimatableAttributeAdjustablePoint point(SvgElement(path, root), path, "d",
                                             SvgElement(path.firstChild(), root));
    point.refresh(root);
    const auto* inner = dynamic_cast<AnimatableAttributeFloatList*>(point.inner.get());
    ASSERT_TRUE(inner);
    ASSERT_EQ(inner->values.size(), 2);
    EXPECT_THAT(inner->values[1], ElementsAre(3, 4));
}

TEST(SvgAdjustablePointAttribute, RefreshInATreeWithoutTheElementsMakesAnEmptyList) {
    QDomDocument dom;
    dom.setContent(QStringLiteral("<svg><path><animate values='1;2'/></path></svg>"));
    const QDomElement root = dom.documentElement();
    const QDomNode path = root.firstChild();
    AnimatableAttributeAdjustablePoint point(SvgElement(path, root), path, "d",
                                             SvgElement(path.firstChild(), root));
    QDomDocument other;
    other.setContent(QStringLiteral("<svg/>"));
    for (const QDomNode& where : {QDomNode(other.documentElement()), QDomNode()}) {
        point.refresh(where);
        const auto* inner = dynamic_cast<AnimatableAttributeFloatList*>(point.inner.get());
        ASSERT_TRUE(inner);
        EXPECT_EQ(inner->valueCount, 2); // no numbers in `from` and none in `to`
        EXPECT_TRUE(inner->element.path.isEmpty());
    }
}

} // namespace
