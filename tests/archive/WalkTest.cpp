#include "Archive/Internal/Walk.h"
#include "support/Documents.h"

#include <gtest/gtest.h>

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

} // namespace
