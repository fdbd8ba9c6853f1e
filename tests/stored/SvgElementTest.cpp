#include "Stored/V21/SvgElement.h"
#include "Stored/V21/Internal/NodeTable.h"
#include "support/Documents.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDomDocument>

using namespace Stored::V21;
using testing::ElementsAre;
using Tests::xml;

namespace {

QDomElement first(const QDomDocument& dom, const char* tag) {
    return dom.elementsByTagName(QString::fromLatin1(tag)).item(0).toElement();
}

TEST(SvgElement, CountsSiblingsOfEveryKindBefore) {
    const auto dom = xml("<svg>text<!-- comment --><g/><g><rect id='r'/></g></svg>");
    const SvgElement element(first(dom, "rect"), dom.documentElement());
    EXPECT_THAT(element.path, ElementsAre(3, 0));
    EXPECT_EQ(element.pathKey, "30");
    EXPECT_EQ(element.id, "r");
}

TEST(SvgElement, NumbersInTheKeyHaveNoSeparator) {
    std::string text = "<svg><g>";
    for (int i = 0; i < 12; ++i)
        text += "<a/>";
    const auto dom = xml(text + "<rect/></g></svg>");
    EXPECT_EQ(SvgElement(first(dom, "rect"), dom.documentElement()).pathKey, "012");
}

TEST(SvgElement, OfTheRootHasAnEmptyPath) {
    const auto dom = xml("<!-- before --><svg id='s' visibility='hidden'/>");
    const SvgElement element(dom.documentElement(), dom.documentElement());
    EXPECT_TRUE(element.path.isEmpty());
    EXPECT_EQ(element.pathKey, "");
    EXPECT_EQ(element.id, "s");
    EXPECT_FALSE(element.underVisibility);
    EXPECT_EQ(element.resolve(dom.documentElement()), dom.documentElement());
}

TEST(SvgElement, OfANullNodeIsEmpty) {
    const auto dom = xml("<svg/>");
    const SvgElement element(QDomNode(), dom.documentElement());
    EXPECT_TRUE(element.path.isEmpty());
    EXPECT_EQ(element.id, "");
}

TEST(SvgElement, VisibilityCountsOnAncestorsAndNotOnTheNodeItself) {
    const auto dom = xml("<svg><g visibility='inherit'><a><rect/></a></g><line visibility='hidden'/></svg>");
    EXPECT_TRUE(SvgElement(first(dom, "rect"), dom.documentElement()).underVisibility);
    EXPECT_FALSE(SvgElement(first(dom, "line"), dom.documentElement()).underVisibility);
    EXPECT_FALSE(SvgElement(first(dom, "g"), dom.documentElement()).underVisibility);
}

TEST(SvgElement, VisibilityOfTheRootCounts) {
    const auto dom = xml("<svg visibility=''><rect/></svg>");
    EXPECT_TRUE(SvgElement(first(dom, "rect"), dom.documentElement()).underVisibility);
}

TEST(SvgElement, ReportsThatItIsBelowDefs) {
    const auto dom = xml("<svg><defs><g><rect/></g></defs><line/></svg>");
    EXPECT_TRUE(SvgElement(first(dom, "rect"), dom.documentElement()).underDefs);
    EXPECT_FALSE(SvgElement(first(dom, "defs"), dom.documentElement()).underDefs);
    EXPECT_FALSE(SvgElement(first(dom, "line"), dom.documentElement()).underDefs);
}

TEST(SvgElement, ATextNodeHasNoId) {
    const auto dom = xml("<svg><text>words</text></svg>");
    const SvgElement element(first(dom, "text").firstChild(), dom.documentElement());
    EXPECT_THAT(element.path, ElementsAre(0, 0));
    EXPECT_EQ(element.id, "");
}

TEST(SvgElement, IsFoundAgainAfterANewParse) {
    const char* text = "<svg>a<g/><g><!-- c --><rect id='wanted'/><rect/></g></svg>";
    const auto dom = xml(text);
    const SvgElement element(first(dom, "rect"), dom.documentElement());
    const auto again = xml(text);
    EXPECT_EQ(element.resolve(again.documentElement()).toElement().attribute("id"), "wanted");
}

TEST(SvgElement, OutsideOfTheTreeResolvesToNull) {
    const auto dom = xml("<svg><g/></svg>");
    for (const QList<int>& path : {QList<int>{1}, QList<int>{0, 0}, QList<int>{5, 7}}) {
        SvgElement element;
        element.path = path;
        EXPECT_TRUE(element.resolve(dom.documentElement()).isNull());
        EXPECT_EQ(Internal::NodeTable(dom.documentElement()).find(element), -1);
    }
    EXPECT_TRUE(SvgElement().resolve(QDomNode()).isNull());
}

TEST(NodeTable, GivesEachNodeTheSamePositionAsSvgElement) {
    const auto dom = xml("<svg id='s'>text<defs visibility='x'><g id='a'>t<clipPath><rect id='b'/></clipPath>"
                         "</g><!-- c --></defs><g/><g><line/><line id='z'/></g><?pi data?></svg>");
    const Internal::NodeTable nodes(dom.documentElement());
    EXPECT_EQ(nodes.size(), 13);
    for (int number = 0; number < nodes.size(); ++number) {
        const SvgElement expected(nodes.node(number), dom.documentElement());
        const SvgElement place = nodes.place(number);
        EXPECT_EQ(place.path, expected.path);
        EXPECT_EQ(place.pathKey, expected.pathKey);
        EXPECT_EQ(place.id, expected.id);
        EXPECT_EQ(place.underVisibility, expected.underVisibility);
        EXPECT_EQ(place.underDefs, expected.underDefs);
        EXPECT_EQ(nodes.find(place), number);
        EXPECT_EQ(nodes.resolve(place), place.resolve(dom.documentElement()));
    }
}

TEST(NodeTable, ListsTheElementsBelowAnElement) {
    const auto dom = xml("<svg><g><g/><a><g/></a></g><g/></svg>");
    const Internal::NodeTable nodes(dom.documentElement());
    EXPECT_THAT(nodes.elements("g"), ElementsAre(1, 2, 4, 5));
    EXPECT_THAT(nodes.elementsBelow(1, "g"), ElementsAre(2, 4));
    EXPECT_THAT(nodes.elementsBelow(5, "g"), ElementsAre());
}

TEST(NodeTable, OfNothingIsEmpty) {
    const Internal::NodeTable nodes{QDomNode()};
    EXPECT_EQ(nodes.size(), 0);
    EXPECT_TRUE(nodes.resolve(SvgElement()).isNull());
}

} // namespace
