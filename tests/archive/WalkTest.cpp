#include "Archive/Internal/Walk.h"
#include "Archive/Internal/ObjectIds.h"
#include "support/Documents.h"

#include <gtest/gtest.h>

using Archive::Internal::RenewedMaximum;
using Tests::xml;

namespace {

std::string steps(const QDomNode& below) {
    std::string text;
    Archive::Internal::walkElements(
        below, [&](const QDomElement& e) { text += '<' + e.tagName().toStdString(); },
        [&](const QDomElement& e) { text += '>' + e.tagName().toStdString(); });
    return text;
}

TEST(WalkElements, EntersAndLeavesEachElement) {
    const QDomDocument document = xml("<a>x<b><c/>y<d><e/></d></b><!-- z --><f/></a>");
    EXPECT_EQ(steps(document), "<a<b<c>c<d<e>e>d>b<f>f>a");
    EXPECT_EQ(steps(document.documentElement()), "<b<c>c<d<e>e>d>b<f>f");
}

TEST(WalkElements, StaysBelowItsRoot) {
    const QDomDocument document = xml("<a><b><c/></b><d/></a>");
    EXPECT_EQ(steps(document.documentElement().firstChildElement("b")), "<c>c");
    EXPECT_EQ(steps(document.documentElement().firstChildElement("d")), "");
    EXPECT_EQ(steps(QDomElement()), "");
}

TEST(RenewedMaximum, CountsWhatWasAdded) {
    QDomDocument document = xml("<a objectId='7'><b objectId='3'/></a>");
    RenewedMaximum maximum(document);
    EXPECT_EQ(maximum.take(), 7);
    maximum.added(5);
    EXPECT_EQ(maximum.take(), 7);
    maximum.added(12);
    EXPECT_EQ(maximum.take(), 12);
}

TEST(RenewedMaximum, SearchesAgainOnceInDoubt) {
    QDomDocument document = xml("<a objectId='7'><b objectId='9'/></a>");
    RenewedMaximum maximum(document);
    EXPECT_EQ(maximum.take(), 9);
    QDomElement root = document.documentElement();
    root.removeChild(root.firstChild());
    maximum.distrust();
    EXPECT_EQ(maximum.take(), 7);
    root.setAttribute("objectId", "8");
    EXPECT_EQ(maximum.take(), 8);
    maximum.added(100);
    EXPECT_EQ(maximum.take(), 8);
}

TEST(RenewedMaximum, CountsWhatWasAddedBesideAComment) {
    QDomDocument document = xml("<a objectId='7'><!-- by hand --></a>");
    RenewedMaximum maximum(document);
    EXPECT_EQ(maximum.take(), 7);
    maximum.added(100);
    EXPECT_EQ(maximum.take(), 100);
    maximum.distrust();
    EXPECT_EQ(maximum.take(), 7);
}

// The reader stops at the prefix, which nothing declares.
TEST(RenewedMaximum, TrustsNothingWhereTheTextHasAnError) {
    QDomDocument document = xml("<a objectId='7'><p:b objectId='9'/></a>");
    RenewedMaximum maximum(document);
    EXPECT_EQ(maximum.take(), 7);
    maximum.added(100);
    EXPECT_EQ(maximum.take(), 7);
    document.documentElement().setAttribute("objectId", "8");
    EXPECT_EQ(maximum.take(), 8);
}

} // namespace
