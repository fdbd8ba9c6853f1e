// Timing in a drawing: times that refer to other animations, the animations, the closing part.

#include "Stored/V21/SvgDocument.h"
#include "support/Log.h"
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

// Conditional timing.

QString beginOf(const QString& animations, const QString& id) {
    return live(SvgDocument("<svg>" + animations + "</svg>"), id, "begin");
}

const QString a = "<animate id='a' begin='1s' dur='2s'/>";

TEST(SvgConditionalTiming, EndWithOffset) {
    EXPECT_EQ(beginOf(a + "<animate id='x' begin='a.end-500ms'/>", "x"), "2500ms");
    EXPECT_EQ(beginOf(a + "<animate id='x' begin='a.end+1'/>", "x"), "4000ms");
    EXPECT_EQ(beginOf(a + "<animate id='x' begin=' a.end '/>", "x"), "3000ms");
}

TEST(SvgConditionalTiming, BeginWithOffset) {
    EXPECT_EQ(beginOf(a + "<animate id='x' begin='a.begin + 250ms'/>", "x"), "1250ms");
    EXPECT_EQ(beginOf(a + "<animate id='x' begin='a.begin'/>", "x"), "1000ms");
}

TEST(SvgConditionalTiming, AMissingReferenceIsZero) {
    EXPECT_EQ(beginOf("<animate id='x' begin='missing.begin+1s'/>", "x"), "1000ms");
    EXPECT_EQ(beginOf("<animate id='x' begin='missing.end-1s'/>", "x"), "-1000ms");
}

TEST(SvgConditionalTiming, AReferenceMayComeLaterAndReferToAnother) {
    const QString animations =
        "<animate id='x' begin='y.end+1s' dur='1s'/><animate id='y' begin='z.end' dur='1s'/>"
        "<animate id='z' begin='500ms' dur='250ms'/>";
    EXPECT_EQ(beginOf(animations, "y"), "750ms");
    EXPECT_EQ(beginOf(animations, "x"), "2750ms");
}

TEST(SvgConditionalTiming, AllThreeTagsAreResolved) {
    const QString animations =
        "<animate attributeName='k'/><animateColor id='c' begin='t.end' dur='1s'/>"
        "<animateTransform id='t' begin='1s' dur='3s'/><animateMotion id='m' begin='c.end'/>"
        "<animate id='x' begin='c.begin'/><animate id='n' begin='m.end'/>";
    EXPECT_EQ(beginOf(animations, "c"), "4000ms");
    EXPECT_EQ(beginOf(animations, "x"), "4000ms");
    EXPECT_EQ(beginOf(animations, "m"), "c.end");
    EXPECT_EQ(beginOf(animations, "n"), "0ms"); // a motion is not found by its id
}

TEST(SvgConditionalTiming, TheFirstOfAnIdWinsInTheOrderOfTheTags) {
    // All `animate` elements come before all `animateColor` elements, in any document order.
    EXPECT_EQ(beginOf("<animateColor id='d' begin='9s'/><animate id='d' begin='1s'/>"
                      "<animate id='d' begin='5s'/><animate id='x' begin='d.begin'/>",
                      "x"),
              "1000ms");
    // So do all `animateColor` elements before all `animateTransform` elements.
    EXPECT_EQ(beginOf("<animate id='x' begin='d.begin'/><animateTransform id='d' begin='9s'/>"
                      "<animateColor id='d' begin='2s'/>",
                      "x"),
              "2000ms");
}

TEST(SvgConditionalTiming, ASignInTheIdDecides) {
    // The first "-" is in the id, and "1.end-500ms" is no time.
    EXPECT_EQ(beginOf("<animate id='a-1' begin='1s' dur='2s'/><animate id='x' begin='a-1.end-500ms'/>", "x"),
              "3000ms");
    EXPECT_EQ(beginOf("<animate id='a+b' begin='1s' dur='2s'/><animate id='x' begin='a+b.end-500ms'/>", "x"),
              "3000ms");
    // A "+" anywhere takes precedence over a "-".
    EXPECT_EQ(beginOf(a + "<animate id='x' begin='a.end-500ms+1s'/>", "x"), "4000ms");
    EXPECT_EQ(beginOf("<animate id='a-1' begin='1s' dur='2s'/><animate id='x' begin='a-1.end+500ms'/>", "x"),
              "3500ms");
}

TEST(SvgConditionalTiming, BeginIsSearchedForBeforeEnd) {
    EXPECT_EQ(beginOf("<animate id='a.end' begin='4s'/><animate id='x' begin='a.end.begin'/>", "x"),
              "4000ms");
}

TEST(SvgConditionalTiming, TheFirstOccurrenceEndsTheId) {
    EXPECT_EQ(beginOf(a + "<animate id='x' begin='a.end.end'/>", "x"), "3000ms");
    EXPECT_EQ(beginOf(a + "<animate id='x' begin='a.ending'/>", "x"), "3000ms");
}

TEST(SvgConditionalTiming, AnEmptyIdIsNoReference) {
    EXPECT_EQ(beginOf(a + "<animate id='x' begin='.end+1s'/>", "x"), ".end+1s");
}

TEST(SvgConditionalTiming, AnEventCanNotBeReadAsATime) {
    EXPECT_EQ(beginOf(a + "<animate id='x' begin='click'/>", "x"), "click");
}

TEST(SvgConditionalTiming, MinusOneMillisecondOnlyLooksUnresolved) {
    EXPECT_EQ(beginOf("<animate id='x' begin='-1ms' dur='1s'/><animate id='y' begin='x.end'/>", "x"), "-1ms");
    EXPECT_EQ(beginOf("<animate id='x' begin='-1ms' dur='1s'/><animate id='y' begin='x.end'/>", "y"),
              "999ms");
}

TEST(SvgConditionalTiming, ACycleIsReportedOnceAndReadsAsMissing) {
    const Tests::Log log;
    const SvgDocument document(
        "<svg><animate id='a' begin='b.end' dur='1s'/><animate id='b' begin='a.end+1s' "
        "dur='2s'/></svg>");
    EXPECT_THAT(log.lines(), ElementsAre("ERROR conditional timing refers to itself"));
    EXPECT_EQ(live(document, "b", "begin"), "1000ms"); // its "a.end" is missing
    EXPECT_EQ(live(document, "a", "begin"), "3000ms");
}

TEST(SvgConditionalTiming, AReferenceToItselfReadsAsMissing) {
    const Tests::Log log;
    const SvgDocument document("<svg><animate id='a' begin='a.end+2s' dur='1s'/></svg>");
    EXPECT_THAT(log.lines(), ElementsAre("ERROR conditional timing refers to itself"));
    EXPECT_EQ(live(document, "a", "begin"), "2000ms");
}

TEST(SvgConditionalTiming, EachCycleIsReported) {
    const Tests::Log log;
    const SvgDocument document("<svg><animate id='a' begin='a.end'/><animate id='b' begin='c.end'/>"
                               "<animate id='c' begin='d.end'/><animate id='d' begin='b.end'/>"
                               "<animate id='e' begin='b.end'/></svg>");
    EXPECT_THAT(log.lines(), SizeIs(2));
}

TEST(SvgConditionalTiming, ALongChainNeedsNoStack) {
    QString text = "<svg>";
    for (int i = 0; i < 50000; ++i)
        text += QString("<animate id='a%1' begin='a%2.end' dur='1ms'/>").arg(i).arg(i + 1);
    const SvgDocument document(text + "</svg>");
    EXPECT_EQ(document.dom().documentElement().firstChildElement().attribute("begin"), "49999ms");
}

TEST(SvgConditionalTiming, ALongTextIsReadOnceNotForEachReference) {
    const QString text = "<svg><animate id='a' begin='" + QString(300000, ' ') + "1s' dur='" +
                         QString(300000, ' ') + "2s'/>" +
                         QString("<animate begin='a.end'/>").repeated(30000) + "</svg>";
    const SvgDocument document(text);
    EXPECT_EQ(document.dom().documentElement().lastChildElement().attribute("begin"), "3000ms");
}

TEST(SvgConditionalTiming, ABeginTooGreatIsZero) {
    EXPECT_EQ(beginOf("<animate id='a' begin='1e999s' dur='2s'/><animate id='x' begin='a.end+1e999s'/>", "x"),
              "2000ms");
}

TEST(SvgConditionalTiming, SumsWrap) {
    EXPECT_EQ(beginOf("<animate id='a' begin='2147483647ms' dur='2147483647ms'/>"
                      "<animate id='x' begin='a.end+2147483647ms'/>",
                      "x"),
              "2147483645ms");
}

TEST(SvgConditionalTiming, WithoutReferencesTheTextIsUnchanged) {
    const QString text = "<svg  ><animate   id='a' begin='1s'/></svg>";
    EXPECT_EQ(SvgDocument(text).content(), text.toUtf8());
}

// Animations.

std::vector<std::shared_ptr<AnimatableAttribute>> animationsOf(const QString& attributes) {
    return SvgDocument("<svg><g/><rect x='5'><animate " + attributes + "/></rect></svg>").animations();
}

TEST(SvgAnimations, ReferToTheAnimatedElement) {
    const auto animations = animationsOf("attributeName='x' from='1' to='2'");
    ASSERT_THAT(animations, SizeIs(1));
    EXPECT_THAT(animations[0]->element.path, ElementsAre(1));
    EXPECT_EQ(animations[0]->name, "x");
    EXPECT_EQ(animations[0]->value, "5");
    EXPECT_EQ(animations[0]->id, "");
}

TEST(SvgAnimations, WithoutAttributeNameAreSkipped) {
    EXPECT_THAT(animationsOf("from='1' to='2' dur='9s'"), IsEmpty());
    EXPECT_THAT(animationsOf("attributeName='' from='1' to='2'"), IsEmpty());
    EXPECT_EQ(SvgDocument("<svg><animate from='1' to='2' dur='9s'/></svg>").durationMs(), 0);
}

TEST(SvgAnimations, OfTheOtherTagsAreNotParsed) {
    EXPECT_THAT(SvgDocument("<svg><animate/><animateColor attributeName='fill' to='red'/><animateTransform "
                            "attributeName='transform'/><animateMotion attributeName='x'/></svg>")
                    .animations(),
                IsEmpty());
}

TEST(SvgAnimations, AreInDocumentOrder) {
    const SvgDocument document(
        "<svg><g><animate attributeName='one'/></g><animate attributeName='two'/></svg>");
    ASSERT_THAT(document.animations(), SizeIs(2));
    EXPECT_EQ(document.animations()[0]->name, "one");
    EXPECT_EQ(document.animations()[1]->name, "two");
    EXPECT_THAT(document.animations()[1]->element.path, IsEmpty()); // the root itself is animated
}

TEST(SvgAnimations, Timing) {
    const auto animation = animationsOf("attributeName='x' begin='500ms' dur=' 2s '")[0];
    EXPECT_EQ(animation->beginMs, 500);
    EXPECT_EQ(animation->endMs, 2500);
    EXPECT_EQ(animationsOf("attributeName='x'")[0]->endMs, 0);
}

TEST(SvgAnimations, RepeatCount) {
    EXPECT_EQ(animationsOf("attributeName='x' repeatCount='3'")[0]->repeatCount, 3);
    EXPECT_EQ(animationsOf("attributeName='x' repeatCount='indefinite'")[0]->repeatCount, -1);
    EXPECT_EQ(animationsOf("attributeName='x' repeatCount='1.5'")[0]->repeatCount, -1);
    EXPECT_EQ(animationsOf("attributeName='x'")[0]->repeatCount, 1);
    EXPECT_EQ(animationsOf("attributeName='x' repeatCount=''")[0]->repeatCount, 1);
}

TEST(SvgAnimations, FreezeAndCalcMode) {
    EXPECT_TRUE(animationsOf("attributeName='x' fill='freeze'")[0]->freeze);
    EXPECT_FALSE(animationsOf("attributeName='x' fill='remove'")[0]->freeze);
    EXPECT_FALSE(animationsOf("attributeName='x'")[0]->freeze);
    EXPECT_FALSE(animationsOf("attributeName='x' calcMode='discrete'")[0]->interpolated);
    EXPECT_TRUE(animationsOf("attributeName='x' calcMode='linear'")[0]->interpolated);
    EXPECT_TRUE(animationsOf("attributeName='x'")[0]->interpolated);
}

TEST(SvgAnimations, ValuesTakePrecedenceOverFromAndTo) {
    const auto animation = animationsOf("attributeName='x' values='1;2;;3' from='8' to='9'")[0];
    ASSERT_TRUE(leaf<AnimatableAttributeFloat>(animation));
    EXPECT_THAT(leaf<AnimatableAttributeFloat>(animation)->values,
                ElementsAre(1, 2, 0, 3)); // empty parts are kept
    EXPECT_EQ(animation->valueCount, 4);
    const auto fromTo = animationsOf("attributeName='x' values='' from='8' to='9'")[0];
    EXPECT_THAT(leaf<AnimatableAttributeFloat>(fromTo)->values, ElementsAre(8, 9));
}

TEST(SvgAnimations, TheFirstKeyValueDecidesTheClass) {
    EXPECT_TRUE(leaf<AnimatableAttributeColor>(animationsOf("attributeName='x' values=' red ;1'")[0]));
    EXPECT_TRUE(leaf<AnimatableAttributeColor>(animationsOf("attributeName='x' values=' #123 ;1'")[0]));
    EXPECT_TRUE(leaf<AnimatableAttributeFloat>(animationsOf("attributeName='x' values=' 1e3 ;red'")[0]));
    EXPECT_TRUE(leaf<AnimatableAttributeText>(animationsOf("attributeName='x' values='hidden;visible'")[0]));
    EXPECT_TRUE(leaf<AnimatableAttributeText>(animationsOf("attributeName='x' values=';1'")[0]));
    EXPECT_TRUE(leaf<AnimatableAttributeText>(animationsOf("attributeName='x'")[0]));
    EXPECT_TRUE(leaf<AnimatableAttributeText>(
        animationsOf(QString::fromUtf8("attributeName='x' values='\xc3\xa9t\xc3\xa9;1'"))[0]));
    EXPECT_TRUE(leaf<AnimatableAttributeFloatList>(animationsOf("attributeName='x' values='1e999;2'")[0]));
    EXPECT_TRUE(leaf<AnimatableAttributeFloatList>(animationsOf("attributeName='x' values='1 2;3 4'")[0]));
    EXPECT_TRUE(
        leaf<AnimatableAttributeFloatList>(animationsOf("attributeName='x' values='no-letter;a'")[0]));
    EXPECT_TRUE(leaf<AnimatableAttributeFloatList>(animationsOf("attributeName='x' values='#xyz;1'")[0]));
}

TEST(SvgAnimations, AnyKeyValueMayNameAPoint) {
    for (const char* values : {"red;p.posX", "1;2;posY", "a posX b\nc;1"}) {
        const auto animation = animationsOf(QString("attributeName='x' values='%1'").arg(values))[0];
        const auto* point = leaf<AnimatableAttributeAdjustablePoint>(animation);
        ASSERT_TRUE(point) << values;
        EXPECT_FALSE(point->inner); // there are no adjustable points
        EXPECT_THAT(point->animateElement.path, ElementsAre(1, 0));
        EXPECT_EQ(point->valueCount, 0);
    }
    EXPECT_TRUE(leaf<AnimatableAttributeText>(animationsOf("attributeName='x' values='posx;posZ'")[0]));
    EXPECT_TRUE(leaf<AnimatableAttributeAdjustablePoint>(
        animationsOf("attributeName='x' from='red' to='p.posY'")[0]));
    // If there are `values`, the others are ignored.
    EXPECT_TRUE(leaf<AnimatableAttributeColor>(
        animationsOf("attributeName='x' values='red' from='p.posX' to='p.posY'")[0]));
}

TEST(SvgAnimations, AnAnimationThatIsTheRootHasNoElement) {
    // This runs only for text that Qt SVG accepts, so the root is an `svg`, and an `animate` always has a
    // parent element.
    const SvgDocument document("<animate attributeName='x' to='1'/>");
    EXPECT_THAT(document.animations(), IsEmpty());
}

// The closing part.

int conclusionOf(const QString& animations) {
    return SvgDocument("<svg><animate attributeName='k' dur='10s'/>" + animations + "</svg>").conclusionMs();
}

TEST(SvgConclusion, IsTheRestAfterItsBegin) {
    EXPECT_EQ(conclusionOf("<animate id='CONCLUSION' begin='7s'/>"), 3000);
    EXPECT_EQ(conclusionOf("<animateTransform id='CONCLUSION' begin='7.5s'/>"), 2500);
    EXPECT_EQ(conclusionOf("<animate id='conclusion' begin='7s'/>"), 0);
    EXPECT_EQ(conclusionOf("<g id='CONCLUSION' begin='7s'/>"), 0);
    EXPECT_EQ(conclusionOf(""), 0);
}

TEST(SvgConclusion, ABeginOfZeroIsIgnored) {
    EXPECT_EQ(conclusionOf("<animate id='CONCLUSION' begin='0s'/><animate id='CONCLUSION' begin='6s'/>"),
              4000);
    EXPECT_EQ(conclusionOf("<animate id='CONCLUSION' begin='-3s'/>"), 0);
}

TEST(SvgConclusion, TheFirstOfATagEndsTheSearchForTheTag) {
    // It starts at the end, so its length is 0. Then the next tag is searched, not the second `animate`.
    EXPECT_EQ(conclusionOf("<animate id='CONCLUSION' begin='10s'/><animate id='CONCLUSION' begin='6s'/>"
                           "<animateMotion id='CONCLUSION' begin='9s'/>"),
              1000);
}

TEST(SvgConclusion, TheTagsHaveAnOrder) {
    EXPECT_EQ(conclusionOf(
                  "<animateTransform id='CONCLUSION' begin='1s'/><animateColor id='CONCLUSION' begin='2s'/>"
                  "<animateMotion id='CONCLUSION' begin='3s'/>"),
              7000);
    EXPECT_EQ(conclusionOf("<animateTransform id='CONCLUSION' begin='1s'/><animateColor id='CONCLUSION' "
                           "begin='2s'/>"),
              8000);
}

TEST(SvgConclusion, UsesTheResolvedTiming) {
    EXPECT_EQ(conclusionOf("<animate id='m' begin='1s' dur='1s'/><animate id='CONCLUSION' begin='m.end'/>"),
              8000);
}

} // namespace
