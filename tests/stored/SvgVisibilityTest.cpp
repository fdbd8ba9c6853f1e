// `use` elements and the visibility that they inherit from `defs`.

#include "Stored/V21/SvgDocument.h"
#include "support/Svg.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Stored::V21;
using testing::SizeIs;
using Tests::live;

namespace {

TEST(SvgUse, IsListedByTheIdThatItRefersTo) {
    const SvgDocument document(
        "<svg><use id='1' xlink:href='#a'/><use xlink:href='b.svg#b'/><use href='#c'/>"
        "<use xlink:href=''/><g><use id='2' xlink:href='#a'/></g><use xlink:href='#'/></svg>");
    EXPECT_THAT(document.useElements(), SizeIs(2));
    ASSERT_THAT(document.useElements().at("a"), SizeIs(2));
    EXPECT_EQ(document.useElements().at("a")[0]->id, "1");
    EXPECT_EQ(document.useElements().at("a")[1]->id, "2");
    EXPECT_THAT(document.useElements().at(""), SizeIs(1));
}

TEST(SvgVisibility, IsCarriedFromDefsToUse) {
    const SvgDocument document(
        "<svg><defs><g><path id='a' visibility='visible'/></g><path id='b' "
        "visibility='collapse'/><path id='c'/></defs><use id='ua' xlink:href='#a'/>"
        "<use id='ub' visibility='visible' xlink:href='#b'/><use id='uc' xlink:href='#c'/>"
        "</svg>");
    EXPECT_EQ(live(document, "ua", "visibility"), "visible");
    EXPECT_EQ(live(document, "ub", "visibility"), "hidden");
    EXPECT_EQ(live(document, "uc", "visibility"), "(none)");
    EXPECT_TRUE(document.content().startsWith("<?xml"));
}

TEST(SvgVisibility, OutsideDefsIsNotCarried) {
    const QString text = "<svg><path id='a' visibility='visible'/><use id='u' xlink:href='#a'/></svg>";
    const SvgDocument document(text);
    EXPECT_EQ(live(document, "u", "visibility"), "(none)");
    EXPECT_EQ(document.content(), text.toUtf8());
}

TEST(SvgVisibility, BesideDefsIsNotCarried) {
    const SvgDocument document("<svg><g id='a' visibility='visible'/><defs><g/></defs><g id='b' "
                               "visibility='visible'/><use id='ua' xlink:href='#a'/>"
                               "<use id='ub' xlink:href='#b'/></svg>");
    EXPECT_EQ(live(document, "ua", "visibility"), "(none)");
    EXPECT_EQ(live(document, "ub", "visibility"), "(none)");
}

TEST(SvgVisibility, UnderAnotherVisibilityIsNotSet) {
    const SvgDocument document("<svg><defs><path id='a' visibility='visible'/></defs><g visibility='hidden'>"
                               "<use id='u' xlink:href='#a'/></g></svg>");
    EXPECT_EQ(live(document, "u", "visibility"), "(none)");
    EXPECT_TRUE(document.content().startsWith("<?xml")); // the document was saved
}

TEST(SvgVisibility, TheDefsElementItselfCounts) {
    const SvgDocument document("<svg><defs id='d' visibility='visible'/><use id='u' xlink:href='#d'/></svg>");
    EXPECT_EQ(live(document, "u", "visibility"), "visible");
}

TEST(SvgVisibility, OfTwoElementsOfAnIdTheLastWins) {
    const SvgDocument document(
        "<svg><defs><a id='a' visibility='visible'/><b id='a' visibility='hidden'/></defs>"
        "<use id='u' xlink:href='#a'/></svg>");
    EXPECT_EQ(live(document, "u", "visibility"), "hidden");
}

TEST(SvgVisibility, SetOnAUseInDefsIsCarriedFurther) {
    // First "u" gets the value of "a". Since "u" is itself an element in the defs, "v" then gets it, too.
    const SvgDocument document(
        "<svg><defs><path id='a' visibility='visible'/><use id='u' xlink:href='#a'/></defs>"
        "<use id='v' xlink:href='#u'/></svg>");
    EXPECT_EQ(live(document, "u", "visibility"), "visible");
    EXPECT_EQ(live(document, "v", "visibility"), "visible");
}

TEST(SvgVisibility, InTheOtherOrderTheUseHasNoValueYet) {
    const SvgDocument document(
        "<svg><defs><use id='u' xlink:href='#a'/><path id='a' visibility='visible'/></defs>"
        "<use id='v' xlink:href='#u'/></svg>");
    EXPECT_EQ(live(document, "u", "visibility"), "visible");
    EXPECT_EQ(live(document, "v", "visibility"), "(none)");
}

TEST(SvgVisibility, InnerDefsAreReadAgain) {
    // As above, but the inner defs are read a second time, when "u" already has its visibility.
    const SvgDocument document(
        "<svg><defs><defs><use id='u' xlink:href='#a'/><path id='a' visibility='visible'/>"
        "</defs></defs><use id='v' xlink:href='#u'/></svg>");
    EXPECT_EQ(live(document, "v", "visibility"), "visible");
}

TEST(SvgVisibility, UsesThatReferToEachOtherTerminate) {
    const SvgDocument document("<svg><defs><use id='a' visibility='visible' xlink:href='#b'/>"
                               "<use id='b' visibility='hidden' xlink:href='#a'/>"
                               "<use id='c' visibility='collapse' xlink:href='#c'/></defs></svg>");
    // "a" makes "b" visible, which then makes "a" visible; "c" hides itself.
    EXPECT_EQ(live(document, "a", "visibility"), "visible");
    EXPECT_EQ(live(document, "b", "visibility"), "visible");
    EXPECT_EQ(live(document, "c", "visibility"), "hidden");
}

} // namespace
