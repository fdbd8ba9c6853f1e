// Changing the arrays of an archive, including the predeclarations.

#include "Archive/Internal/Predeclarations.h"
#include "Archive/Xml.h"
#include "support/Elements.h"
#include "support/QtMessages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace {

using testing::ElementsAre;
using Tests::idOf;
using Tests::rootOf;
using Tests::textOf;
using Tests::Texts;

constexpr long long maxLong = std::numeric_limits<long long>::max();
constexpr long long minLong = std::numeric_limits<long long>::min();

TEST(XmlArrays, AppendIncrementsSize) {
    QDomElement array = rootOf("<a size='2'><Item index='1'/><Item index='2'/></a>");
    QDomDocument doc = array.ownerDocument();
    QDomElement item = Archive::appendArrayElement(doc, array);
    item.setAttribute("id", "new");
    EXPECT_EQ(textOf(array), "a size=3 [Item index=1, Item index=2, Item id=new index=3 type=Item]");
}

TEST(XmlArrays, AppendUsesSizeNotTheItems) {
    QDomElement none = rootOf("<a/>");
    QDomElement wrong = rootOf("<a size='7'><Item index='1'/></a>");
    QDomElement bad = rootOf("<a size='many'/>");
    QDomElement greatest = rootOf("<a size='9223372036854775807'/>");
    QDomDocument doc;
    Archive::appendArrayElement(doc, none);
    EXPECT_EQ(textOf(none), "a size=1 [Item index=1 type=Item]");
    Archive::appendArrayElement(doc, wrong);
    EXPECT_EQ(textOf(wrong), "a size=8 [Item index=1, Item index=8 type=Item]");
    Archive::appendArrayElement(doc, bad);
    EXPECT_EQ(textOf(bad), "a size=1 [Item index=1 type=Item]");
    Archive::appendArrayElement(doc, greatest); // wraps instead of overflowing
    EXPECT_EQ(textOf(greatest), "a size=-9223372036854775808 [Item index=-9223372036854775808 type=Item]");
}

TEST(XmlArrays, AppendByNameUsesTheFirstChildOrCreatesIt) {
    QDomElement parent =
        rootOf("<p><in><list size='5'/></in><list size='1'><Item index='1'/></list><list/></p>");
    QDomDocument doc = parent.ownerDocument();
    Archive::appendArrayElement(doc, parent, "list");
    EXPECT_EQ(textOf(parent),
              "p [in [list size=5], list size=2 [Item index=1, Item index=2 type=Item], list]");
    Archive::appendArrayElement(doc, parent, "other");
    EXPECT_EQ(textOf(parent.lastChildElement()), "other size=1 type=Array [Item index=1 type=Item]");
}

TEST(XmlArrays, PrependIncrementsAllIndexes) {
    QDomElement array = rootOf("<a size='3'><Item index='1'/><Item index='2'/><Item index='3'/></a>");
    QDomDocument doc = array.ownerDocument();
    QDomElement item = Archive::prependArrayElement(doc, array);
    item.setAttribute("id", "new");
    EXPECT_EQ(textOf(array),
              "a size=4 [Item id=new index=1 type=Item, Item index=2, Item index=3, Item index=4]");
}

TEST(XmlArrays, PrependKeepsGapsAndInsertsBeforeAnyElement) {
    QDomElement array =
        rootOf("<a size='9'>text<x/><Item index='5'/><Item index='bad'/><Item/><Item index='-3'/></a>");
    QDomDocument doc = array.ownerDocument();
    Archive::prependArrayElement(doc, array);
    EXPECT_EQ(
        textOf(array),
        "a size=10 [Item index=1 type=Item, x, Item index=6, Item index=1, Item index=1, Item index=-2]");
    EXPECT_TRUE(array.firstChild().isText());
}

TEST(XmlArrays, PrependToAnEmptyArray) {
    QDomElement array = rootOf("<a/>");
    QDomDocument doc = array.ownerDocument();
    Archive::prependArrayElement(doc, array);
    EXPECT_EQ(textOf(array), "a size=1 [Item index=1 type=Item]");
}

TEST(XmlArrays, PrependByNameUsesTheFirstChildOrCreatesIt) {
    QDomElement parent = rootOf("<p><list size='1'><Item index='1'/></list><list size='5'/></p>");
    QDomDocument doc = parent.ownerDocument();
    Archive::prependArrayElement(doc, parent, "list");
    Archive::prependArrayElement(doc, parent, "other");
    EXPECT_EQ(textOf(parent), "p [list size=2 [Item index=1 type=Item, Item index=2], list size=5, "
                              "other size=1 type=Array [Item index=1 type=Item]]");
}

TEST(XmlArrays, NullArraysAreIgnored) {
    const Tests::QtMessages messages;
    QDomDocument doc;
    QDomElement none;
    EXPECT_EQ(textOf(Archive::appendArrayElement(doc, none)), "Item index=1 type=Item");
    Archive::prependArrayElement(doc, none);
    EXPECT_FALSE(Archive::removeItemsFromList(none, [](QDomElement&) { return true; }));
    EXPECT_FALSE(Archive::removePredeclare(none, 0));
    EXPECT_TRUE(none.isNull());
    EXPECT_EQ(messages.count(), 0);
}

TEST(XmlArrays, RemoveItemsRenumbersEvenIfNothingIsRemoved) {
    QDomElement array = rootOf("<a size='2'><Item index='5'/><Item index='6'/></a>");
    EXPECT_FALSE(Archive::removeItemsFromList(array, [](QDomElement&) { return false; }));
    EXPECT_EQ(textOf(array), "a size=2 [Item index=1, Item index=2]");
    QDomElement bare = rootOf("<a><Item/></a>");
    EXPECT_FALSE(Archive::removeItemsFromList(bare, [](QDomElement&) { return false; }));
    EXPECT_EQ(textOf(bare), "a [Item index=1]"); // no size is added
}

TEST(XmlArrays, RemoveItemsReducesTheOldSize) {
    QDomElement array = rootOf("<a size='3'><Item><Data id='1'/></Item><Item><Data id='2'/></Item></a>");
    EXPECT_TRUE(Archive::removeItemsFromList(array, [](QDomElement& data) { return idOf(data) == "1"; }));
    EXPECT_EQ(textOf(array), "a size=2 [Item index=1 [Data id=2]]");
    QDomElement bad = rootOf("<a size='some'><Item/><Item/></a>");
    EXPECT_TRUE(Archive::removeItemsFromList(bad, [](QDomElement&) { return true; }));
    EXPECT_EQ(textOf(bad), "a size=-2");
    QDomElement least = rootOf("<a size='-9223372036854775808'><Item/></a>");
    EXPECT_TRUE(Archive::removeItemsFromList(least, [](QDomElement&) { return true; }));
    EXPECT_EQ(textOf(least), "a size=9223372036854775807");
}

TEST(XmlArrays, RemoveItemsTestsTheFirstDataOfEachDirectItem) {
    QDomElement array =
        rootOf("<a size='4'><Item><Data id='1'/><Data id='x'/></Item><Item/><Other/>"
               "<wrap><Item><Data id='y'/></Item></wrap>"
               "<Item index='9'><Key/><in><Data id='z'/></in></Item><Item><Data id='2'/></Item></a>");
    Texts asked;
    EXPECT_TRUE(Archive::removeItemsFromList(array, [&](QDomElement& data) {
        asked.push_back(idOf(data));
        return asked.size() == 2;
    }));
    EXPECT_THAT(asked, ElementsAre("1", "null", "null", "2"));
    EXPECT_EQ(textOf(array),
              "a size=3 [Item index=1 [Data id=1, Data id=x], Other, "
              "wrap [Item [Data id=y]], Item index=2 [Key, in [Data id=z]], Item index=3 [Data id=2]]");
}

// Predeclarations.

TEST(XmlPredeclarations, NewObjectUsesTwoIds) {
    QDomElement array = rootOf("<predeclarations size='4'><Item index='1'/></predeclarations>");
    QDomDocument doc = array.ownerDocument();
    long long maxId = 10;
    EXPECT_EQ(Archive::addPredeclaration(array, doc, "Timeline::Clip", 3, maxId, -1, {}), 11);
    EXPECT_EQ(maxId, 12);
    EXPECT_EQ(textOf(array),
              "predeclarations size=5 [Item index=1, Item index=5 type=Item ["
              "Data objectId=12 type=Predeclare [typeName type=String value=Timeline::Clip, "
              "oid type=ObjectRef value=11, poid type=ObjectRef value=3, refs size=0 type=Array]]]");
}

TEST(XmlPredeclarations, ObjectWithAnIdUsesOneId) {
    QDomElement array = rootOf("<predeclarations/>");
    QDomDocument doc = array.ownerDocument();
    long long maxId = 10;
    EXPECT_EQ(Archive::addPredeclaration(array, doc, "T", 0, maxId, 7, {5, -6}), 7);
    EXPECT_EQ(maxId, 11);
    EXPECT_EQ(textOf(array),
              "predeclarations size=1 [Item index=1 type=Item [Data objectId=11 type=Predeclare ["
              "typeName type=String value=T, oid type=ObjectRef value=7, poid type=ObjectRef value=0, "
              "refs size=2 type=Array [Item index=1 type=Item [Data type=ObjectRef value=5], "
              "Item index=2 type=Item [Data type=ObjectRef value=-6]]]]]");
}

TEST(XmlPredeclarations, IdZeroIsNoId) {
    QDomElement array = rootOf("<predeclarations size='0'/>");
    QDomDocument doc = array.ownerDocument();
    long long maxId = 10;
    EXPECT_EQ(Archive::addPredeclaration(array, doc, "T", 0, maxId, 0, {}), 11);
    EXPECT_EQ(Archive::addPredeclaration(array, doc, "T", 0, maxId, 1, {}), 1);
    EXPECT_EQ(Archive::addPredeclaration(array, doc, "T", 0, maxId, maxId, {}),
              13); // the counter itself as the id
    EXPECT_EQ(maxId, 14);
}

TEST(XmlPredeclarations, MissingPredeclarationsStillUseUpIds) {
    const Tests::QtMessages messages;
    QDomDocument doc;
    QDomElement none;
    long long maxId = 10;
    EXPECT_EQ(Archive::addPredeclaration(none, doc, "T", 0, maxId, -1, {4}), 11);
    EXPECT_EQ(maxId, 12);
    EXPECT_TRUE(none.isNull());
    EXPECT_EQ(messages.count(), 0);
}

TEST(XmlPredeclarations, IdsWrapAtTheLimit) {
    QDomElement array = rootOf("<predeclarations size='0'/>");
    QDomDocument doc = array.ownerDocument();
    long long maxId = maxLong;
    EXPECT_EQ(Archive::addPredeclaration(array, doc, "T", 0, maxId, -1, {}), minLong);
    EXPECT_EQ(maxId, minLong + 1);
    EXPECT_EQ(Archive::addPredeclaration(array, doc, "T", 0, maxId, maxLong, {}), maxLong);
    EXPECT_EQ(maxId, minLong + 2);
}

const char* const records = "<predeclarations size='6'>"
                            "<Item index='1'><Data><oid value='5'/></Data></Item>"
                            "<Item index='2'><Data><oid value='6'/></Data></Item>"
                            "<Item index='3'><Data><oid value='05'/><oid value='6'/></Data></Item>"
                            "<Item index='4'><Data><oid value='abc'/></Data></Item>"
                            "<Item index='5'/>"
                            "<Item index='6'><Data><poid value='5'/></Data></Item></predeclarations>";

TEST(XmlPredeclarations, RemovePredeclareRemovesAllRecordsOfTheObject) {
    QDomElement array = rootOf(records);
    EXPECT_TRUE(Archive::removePredeclare(array, 5));
    EXPECT_EQ(textOf(array),
              "predeclarations size=4 [Item index=1 [Data [oid value=6]], "
              "Item index=2 [Data [oid value=abc]], Item index=3, Item index=4 [Data [poid value=5]]]");
}

TEST(XmlPredeclarations, RemovePredeclareOfAnUnknownId) {
    QDomElement array = rootOf(records);
    EXPECT_FALSE(Archive::removePredeclare(array, 99));
    EXPECT_EQ(textOf(array), textOf(rootOf(records)));
}

TEST(XmlPredeclarations, WhatIsNoNumberCountsAsZero) {
    QDomElement array = rootOf(records);
    EXPECT_TRUE(Archive::removePredeclare(array, 0));
    EXPECT_EQ(textOf(array),
              "predeclarations size=3 [Item index=1 [Data [oid value=5]], "
              "Item index=2 [Data [oid value=6]], Item index=3 [Data [oid value=05, oid value=6]]]");
}

} // namespace
