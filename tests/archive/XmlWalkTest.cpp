// Finding elements of an archive and walking through it.

#include "Archive/Xml.h"
#include "support/Elements.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using Tests::idOf;
using Tests::rootOf;
using Tests::textOf;
using Tests::Texts;
using Tests::xml;

TEST(XmlFind, FindChildWalksDirectChildrenInOrder) {
    const QDomElement e =
        rootOf("<a><in><b id='deep'/></in><b id='1'/><c id='2'/><b id='3'/><b id='4'/></a>");
    Texts asked;
    const auto found = Archive::findChild(e, "b", [&](const QDomElement& child) {
        asked.push_back(idOf(child));
        return idOf(child) == "3";
    });
    EXPECT_EQ(idOf(found), "3");
    EXPECT_THAT(asked, ElementsAre("1", "3"));
    EXPECT_TRUE(Archive::findChild(e, "b", [](const QDomElement&) { return false; }).isNull());
    EXPECT_TRUE(Archive::findChild(QDomElement(), "b", [](const QDomElement&) { return true; }).isNull());
}

TEST(XmlFind, HasChildStopsAtTheFirstHit) {
    const QDomElement e = rootOf("<a><b id='1'/><b id='2'/></a>");
    int asked = 0;
    EXPECT_TRUE(Archive::hasChild(e, "b", [&](const QDomElement&) { return ++asked > 0; }));
    EXPECT_EQ(asked, 1);
    EXPECT_FALSE(Archive::hasChild(e, "b", [](const QDomElement&) { return false; }));
    EXPECT_FALSE(Archive::hasChild(e, "c", [](const QDomElement&) { return true; }));
    EXPECT_FALSE(Archive::hasChild(QDomElement(), "b", [](const QDomElement&) { return true; }));
}

TEST(XmlFind, EmptyFunctionsThrow) {
    QDomElement e = rootOf("<a><Item/></a>");
    QDomDocument doc = e.ownerDocument();
    EXPECT_THROW(Archive::findChild(e, "Item", {}), std::bad_function_call);
    EXPECT_THROW(Archive::hasChild(e, "Item", {}), std::bad_function_call);
    EXPECT_THROW(Archive::forEachChild(doc, "Item", {}), std::bad_function_call);
    EXPECT_THROW(Archive::forEachChild(e, "Item", {}), std::bad_function_call);
    EXPECT_THROW(Archive::iterateArray(e, {}), std::bad_function_call);
    EXPECT_THROW(Archive::removeItemsFromList(e, {}), std::bad_function_call);
}

TEST(XmlFind, RootBaseOfObjectIsTheInnermostOfTheFirstBases) {
    const QDomElement e =
        rootOf("<RootObject id='0'><tag/>"
               "<BaseOfObject id='1'><in><BaseOfObject id='x'/></in>"
               "<BaseOfObject id='2'/><BaseOfObject id='y'><BaseOfObject id='z'/></BaseOfObject>"
               "</BaseOfObject></RootObject>");
    EXPECT_EQ(idOf(Archive::findRootBaseOfObject(e)), "2");
    const QDomElement plain = rootOf("<RootObject id='0'><in><BaseOfObject id='x'/></in></RootObject>");
    EXPECT_TRUE(Archive::findRootBaseOfObject(plain) == plain);
    EXPECT_TRUE(Archive::findRootBaseOfObject(QDomElement()).isNull());
}

TEST(XmlFind, RootObjectIsTheFirstOfItsIdInDocumentOrder) {
    QDomDocument doc = xml(
        "<Archive><RootObject id='a' objectId='5'><in><RootObject id='b' objectId='06'/></in></RootObject>"
        "<RootObject id='c' objectId='6'/><RootObject id='d' objectId='18446744073709551615'/>"
        "<Other id='e' objectId='7'/><RootObject id='f'/></Archive>");
    EXPECT_EQ(idOf(Archive::findRootObject(doc, 5)), "a");
    EXPECT_EQ(idOf(Archive::findRootObject(doc, 6)), "b");
    EXPECT_EQ(idOf(Archive::findRootObject(doc, 7)), "null");
    EXPECT_EQ(idOf(Archive::findRootObject(doc, 0)), "f");
    EXPECT_EQ(idOf(Archive::findRootObject(doc, -1)), "d"); // ids are compared unsigned
    QDomDocument none;
    EXPECT_TRUE(Archive::findRootObject(none, 5).isNull());
}

TEST(XmlWalk, IterateArrayGivesTheDataOfEachItem) {
    const QDomElement array =
        rootOf("<a><Item><Data id='1'/><Data id='x'/></Item><Other><Data id='y'/></Other>"
               "<Item/><Item><Key/><Value/></Item><Item><in><Data id='z'/></in></Item>"
               "<wrap><Item><Data id='w'/></Item></wrap><Item><Data id='2'/></Item></a>");
    Texts met;
    Archive::iterateArray(array, [&](QDomElement& data) { met.push_back(idOf(data)); });
    EXPECT_THAT(met, ElementsAre("1", "null", "null", "null", "2"));
    Archive::iterateArray(QDomElement(), [&](QDomElement&) { met.push_back("never"); });
    EXPECT_EQ(met.size(), 5U);
}

TEST(XmlWalk, IterateArrayFetchesTheNextItemAfterTheCall) {
    QDomElement array = rootOf("<a><Item><Data id='1'/></Item><Item><Data id='2'/></Item></a>");
    QDomDocument doc = array.ownerDocument();
    Texts met;
    Archive::iterateArray(array, [&](QDomElement& data) {
        met.push_back(idOf(data));
        if (met.size() > 1)
            return;
        QDomElement item = Archive::createArrayItem(doc, 9);
        QDomElement added = doc.createElement("Data");
        added.setAttribute("id", "new");
        item.appendChild(added);
        array.insertAfter(item, data.parentNode());
        data.parentNode().removeChild(data); // the data may be removed, its item may not
    });
    EXPECT_THAT(met, ElementsAre("1", "new", "2"));
}

TEST(XmlWalk, RemoveFirstChildRemovesADirectChild) {
    QDomElement e = rootOf("<a><in><b id='deep'/></in><b id='1'/><b id='2'/></a>");
    Archive::removeFirstChild(e, "b");
    Archive::removeFirstChild(e, "none");
    EXPECT_EQ(textOf(e), "a [in [b id=deep], b id=2]");
    QDomElement none;
    Archive::removeFirstChild(none, "b");
    EXPECT_TRUE(none.isNull());
}

} // namespace
