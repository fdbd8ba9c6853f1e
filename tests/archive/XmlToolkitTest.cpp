// The toolkit of XML archives, operation by operation. Texts of doubles were computed apart from the library,
// as base64 of the eight bytes with the most significant first.

#include "Archive/Archive.h"
#include "Archive/Internal/ObjectIds.h"
#include "Archive/Internal/Predeclarations.h"
#include "support/Compare.h"
#include "support/Documents.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <random>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Tests::xml;
using Texts = std::vector<std::string>;

constexpr long long maxLong = std::numeric_limits<long long>::max();
constexpr long long minLong = std::numeric_limits<long long>::min();
constexpr double infinity = std::numeric_limits<double>::infinity();

/// What must stand in an element, as "name|attribute=value ...", attributes by name, children in brackets.
std::string textOf(const QDomElement& e) {
    if (e.isNull())
        return "null";
    std::map<std::string, std::string> attributes;
    for (int i = 0; i < e.attributes().length(); ++i)
        attributes[e.attributes().item(i).nodeName().toStdString()] =
            e.attributes().item(i).nodeValue().toStdString();
    std::string text = e.tagName().toStdString();
    for (const auto& [name, value] : attributes)
        text += ' ' + name + '=' + value;
    std::string children;
    for (QDomElement child = e.firstChildElement(); !child.isNull(); child = child.nextSiblingElement())
        children += (children.empty() ? "" : ", ") + textOf(child);
    return children.empty() ? text : text + " [" + children + ']';
}

QDomElement rootOf(const char* text) {
    static QList<QDomDocument> kept; // an element does not keep its document alive
    kept.append(xml(text));
    return kept.last().documentElement();
}

/// The `id` attributes of what a walk met, "null" for a null element.
std::string idOf(const QDomElement& e) {
    return e.isNull() ? "null" : e.attribute("id").toStdString();
}

/// Qt's "on a null node" warnings while it lives.
class QtWarnings {
public:
    QtWarnings() {
        count = 0;
        m_previous =
            qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) { ++count; });
    }
    ~QtWarnings() { qInstallMessageHandler(m_previous); }
    QtWarnings(const QtWarnings&) = delete;
    QtWarnings& operator=(const QtWarnings&) = delete;

    inline static int count = 0;

private:
    QtMessageHandler m_previous;
};

// Creating elements.

class XmlCreate : public testing::Test {
protected:
    QDomDocument doc;
};

TEST_F(XmlCreate, Array) {
    EXPECT_EQ(textOf(Archive::createArray(doc, "labels", 3)), "labels size=3 type=Array");
    EXPECT_EQ(textOf(Archive::createArray(doc, "labels", maxLong)),
              "labels size=9223372036854775807 type=Array");
}

TEST_F(XmlCreate, ArrayItem) {
    EXPECT_EQ(textOf(Archive::createArrayItem(doc, 7)), "Item index=7 type=Item");
    EXPECT_EQ(textOf(Archive::createArrayItem(doc, -1)), "Item index=-1 type=Item");
}

TEST_F(XmlCreate, Bool) {
    EXPECT_EQ(textOf(Archive::createBool(doc, "on", true)), "on type=bool value=1");
    EXPECT_EQ(textOf(Archive::createBool(doc, "on", false)), "on type=bool value=0");
}

TEST_F(XmlCreate, Integers) {
    EXPECT_EQ(textOf(Archive::createInt32(doc, "n", std::numeric_limits<int>::min())),
              "n type=int32_t value=-2147483648");
    EXPECT_EQ(textOf(Archive::createUInt32(doc, "n", std::numeric_limits<unsigned int>::max())),
              "n type=uint32_t value=4294967295");
    EXPECT_EQ(textOf(Archive::createInt64(doc, "n", minLong)), "n type=int64_t value=-9223372036854775808");
    EXPECT_EQ(textOf(Archive::createUInt64(doc, "n", std::numeric_limits<unsigned long long>::max())),
              "n type=uint64_t value=18446744073709551615");
}

TEST_F(XmlCreate, Double) {
    EXPECT_EQ(textOf(Archive::createDouble(doc, "x", 0.5)),
              "x binaryData=P+AAAAAAAAA= type=double value=0.5");
    EXPECT_EQ(textOf(Archive::createDouble(doc, "x", 1234567.0)),
              "x binaryData=QTLWhwAAAAA= type=double value=1.23457e+06");
}

TEST_F(XmlCreate, MTimeIsItsRawCount) {
    EXPECT_EQ(textOf(Archive::createMTime(doc, "t", MTime(-1))), "t type=int64_t value=-1");
    EXPECT_EQ(textOf(Archive::createMTime(doc, "t", MTime())), "t type=int64_t value=0");
}

TEST_F(XmlCreate, Texts) {
    EXPECT_EQ(textOf(Archive::createString(doc, "s", "intro")), "s type=String value=intro");
    EXPECT_EQ(textOf(Archive::createString(doc, "s", QString())), "s type=String value=");
    EXPECT_EQ(textOf(Archive::createImageRef(doc, "image", "empty")), "image ref=empty type=ImageRef");
    EXPECT_EQ(textOf(Archive::createTypeValue(doc, "p", "PointF", "1.5;2")), "p type=PointF value=1.5;2");
}

TEST_F(XmlCreate, ObjectsAndReferences) {
    EXPECT_EQ(textOf(Archive::createObjectRef(doc, "clip", 9)), "clip type=ObjectRef value=9");
    EXPECT_EQ(textOf(Archive::createObject(doc, "RootObject", "Timeline::Clip", maxLong)),
              "RootObject objectId=9223372036854775807 type=Timeline::Clip");
}

TEST_F(XmlCreate, ResourceId) {
    EXPECT_EQ(textOf(Archive::createResourceId(doc, "auxResource", "lut",
                                               static_cast<Stored::V57::ResourceType>(0))),
              "auxResource size=2 type=Array ["
              "Item index=1 type=Item [Data type=String value=lut], "
              "Item index=2 type=Item [Data type=int32_t value=0]]");
    EXPECT_EQ(textOf(Archive::createResourceId(doc, "r", "", static_cast<Stored::V57::ResourceType>(4))),
              "r size=2 type=Array ["
              "Item index=1 type=Item [Data type=String value=], "
              "Item index=2 type=Item [Data type=int32_t value=4]]");
}

TEST_F(XmlCreate, TransformHasFourDecimalsByRows) {
    Stored::V14::Transform transform{};
    transform.m11 = 1;
    transform.m12 = 0.5;
    transform.m13 = -0.25;
    transform.m21 = 1.0 / 3.0;
    transform.m22 = 1234567;
    transform.m23 = infinity;
    transform.m31 = 1.5;
    transform.m32 = 0.00001;
    transform.m33 = 2;
    EXPECT_EQ(textOf(Archive::value2element<Stored::V14::Transform>(doc, "transform", transform, 12)),
              "transform objectId=12 type=Types::Transform ["
              "m11 binaryData=P/AAAAAAAAA= type=double value=1.0000, "
              "m12 binaryData=P+AAAAAAAAA= type=double value=0.5000, "
              "m13 binaryData=v9AAAAAAAAA= type=double value=-0.2500, "
              "m21 binaryData=P9VVVVVVVVU= type=double value=0.3333, "
              "m22 binaryData=QTLWhwAAAAA= type=double value=1234567.0000, "
              "m23 binaryData=AAAAAAAAAAA= type=double value=inf, "
              "m31 binaryData=P/gAAAAAAAA= type=double value=1.5000, "
              "m32 binaryData=PuT4tYjjaPE= type=double value=0.0000, "
              "m33 binaryData=QAAAAAAAAAA= type=double value=2.0000]");
}

TEST_F(XmlCreate, NothingIsInserted) {
    Archive::createArray(doc, "a", 0);
    Archive::createObject(doc, "o", "T", 1);
    EXPECT_TRUE(doc.firstChild().isNull());
}

// Reading and writing single values.

TEST(XmlValues, TypeOf) {
    EXPECT_EQ(Archive::typeOf(rootOf("<a type='Timeline::Clip'/>")), QString("Timeline::Clip"));
    EXPECT_EQ(Archive::typeOf(rootOf("<a/>")), QString());
    EXPECT_EQ(Archive::typeOf(QDomElement()), QString());
}

TEST(XmlValues, ObjectIdOf) {
    const auto idOfText = [](const char* id) {
        return Archive::objectIdOf(rootOf((std::string("<a objectId='") + id + "'/>").c_str()));
    };
    EXPECT_EQ(idOfText("7"), 7U);
    EXPECT_EQ(idOfText("007"), 7U);
    EXPECT_EQ(idOfText("18446744073709551615"), 18446744073709551615U);
    EXPECT_EQ(idOfText("18446744073709551616"), 0U);
    EXPECT_EQ(idOfText("-1"), 0U);
    EXPECT_EQ(idOfText("abc"), 0U);
    EXPECT_EQ(idOfText("7a"), 0U);
    EXPECT_EQ(idOfText(""), 0U);
    EXPECT_EQ(Archive::objectIdOf(rootOf("<a/>")), 0U);
    EXPECT_EQ(Archive::objectIdOf(QDomElement()), 0U);
}

TEST(XmlValues, ValueOfTakesTheFirstChild) {
    const QDomElement e = rootOf("<a><in><b value='deep'/></in><b value='1'/><b value='2'/><c/></a>");
    EXPECT_EQ(Archive::valueOf(e, "b"), QString("1"));
    EXPECT_EQ(Archive::valueOf(e, "c"), QString());
    EXPECT_EQ(Archive::valueOf(e, "d"), QString());
    EXPECT_EQ(Archive::valueOf(QDomElement(), "b"), QString());
}

TEST(XmlValues, RefOf) {
    const QDomElement e = rootOf("<a><b ref='empty' value='x'/><b ref='other'/><c value='y'/></a>");
    EXPECT_EQ(Archive::refOf(e, "b"), QString("empty"));
    EXPECT_EQ(Archive::refOf(e, "c"), QString());
    EXPECT_EQ(Archive::refOf(e, "d"), QString());
}

TEST(XmlValues, SetValueOf) {
    const QDomElement e = rootOf("<a><b/><b value='2'/><in><c value='3'/></in></a>");
    Archive::setValueOf(e, "b", "new");
    Archive::setValueOf(e, "c", "new");
    Archive::setValueOf(QDomElement(), "b", "new");
    EXPECT_EQ(textOf(e), "a [b value=new, b value=2, in [c value=3]]");
}

TEST(XmlValues, ExtractInteger) {
    EXPECT_EQ(Archive::extractValue(QString("42"), 5LL), 42);
    EXPECT_EQ(Archive::extractValue(QString("-42"), 5), -42);
    EXPECT_EQ(Archive::extractValue(QString(""), 5LL), 5);
    EXPECT_EQ(Archive::extractValue(QString(), 5), 5);
    EXPECT_EQ(Archive::extractValue(QString("4.5"), 5LL), 5);
    EXPECT_EQ(Archive::extractValue(QString("0x10"), 5LL), 5);
    EXPECT_EQ(Archive::extractValue(QString("9223372036854775807"), 5LL), maxLong);
    EXPECT_EQ(Archive::extractValue(QString("-9223372036854775808"), 5LL), minLong);
    EXPECT_EQ(Archive::extractValue(QString("9223372036854775808"), 5LL), 5);
}

TEST(XmlValues, ExtractMTime) {
    EXPECT_EQ(Archive::extractValue(QString("1500"), MTime(7)), MTime(1500));
    EXPECT_EQ(Archive::extractValue(QString("soon"), MTime(7)), MTime(7));
    EXPECT_EQ(Archive::extractValue(QString(), MTime(7)), MTime(7));
}

TEST(XmlValues, ExtractDouble) {
    EXPECT_EQ(Archive::extractValue(QString("P+AAAAAAAAA="), 9.0), 0.5);
    EXPECT_EQ(Archive::extractValue(QString("v9AAAAAAAAA="), 9.0), -0.25);
    EXPECT_TRUE(std::signbit(Archive::extractValue(QString("gAAAAAAAAAA="), 9.0))); // -0.0
    EXPECT_TRUE(std::isnan(Archive::extractValue(QString("f/gAAAAAAAA="), 9.0)));
    // Infinities give the fallback.
    EXPECT_EQ(Archive::extractValue(QString("f/AAAAAAAAA="), 9.0), 9.0);
    EXPECT_EQ(Archive::extractValue(QString("//AAAAAAAAA="), 9.0), 9.0);
    // Too few bytes are 0.0, not the fallback; further bytes are not read.
    EXPECT_EQ(Archive::extractValue(QString(""), 9.0), 0.0);
    EXPECT_EQ(Archive::extractValue(QString("P+AAAAAAAA=="), 9.0), 0.0);
    EXPECT_EQ(Archive::extractValue(QString("P+AAAAAAAAD/////"), 9.0), 0.5);
}

TEST(XmlValues, ReadValueLooksAtTypeAndBinaryDataOnly) {
    EXPECT_EQ(Archive::readValue(rootOf("<x type='double' value='7' binaryData='P+AAAAAAAAA='/>"), 9.0), 0.5);
    EXPECT_EQ(Archive::readValue(rootOf("<x type='double' value='7'/>"), 9.0), 0.0);
    EXPECT_EQ(Archive::readValue(rootOf("<x type='double' binaryData='f/AAAAAAAAA='/>"), 9.0), 9.0);
    EXPECT_TRUE(std::isnan(Archive::readValue(rootOf("<x type='double' binaryData='f/gAAAAAAAA='/>"), 9.0)));
    EXPECT_EQ(Archive::readValue(rootOf("<x type='int32_t' value='7' binaryData='P+AAAAAAAAA='/>"), 9.0),
              9.0);
    EXPECT_EQ(Archive::readValue(rootOf("<x value='7' binaryData='P+AAAAAAAAA='/>"), 9.0), 9.0);
    EXPECT_EQ(Archive::readValue(QDomElement(), 9.0), 9.0);
}

TEST(XmlValues, SerializeValue) {
    EXPECT_EQ(Archive::serializeValue(0.5), QString("P+AAAAAAAAA="));
    EXPECT_EQ(Archive::serializeValue(0.0), QString("AAAAAAAAAAA="));
    EXPECT_EQ(Archive::serializeValue(-0.0), QString("gAAAAAAAAAA="));
    EXPECT_EQ(Archive::serializeValue(infinity), QString("AAAAAAAAAAA="));
    EXPECT_EQ(Archive::serializeValue(-infinity), QString("AAAAAAAAAAA="));
    EXPECT_EQ(Archive::serializeValue(std::numeric_limits<double>::quiet_NaN()), QString("f/gAAAAAAAA="));
    EXPECT_EQ(Archive::serializeValue(std::numeric_limits<double>::denorm_min()), QString("AAAAAAAAAAE="));
}

TEST(XmlValues, WriteValueRetypesTheElement) {
    QDomElement e = rootOf("<x type='int32_t' value='7' other='stays'/>");
    Archive::writeValue(e, 0.94);
    EXPECT_EQ(textOf(e), "x binaryData=P+4UeuFHrhQ= other=stays type=double value=0.94");
    Archive::writeValue(e, infinity);
    EXPECT_EQ(textOf(e), "x binaryData=AAAAAAAAAAA= other=stays type=double value=inf");
    Archive::writeValue(e, 1.0 / 3.0);
    EXPECT_EQ(textOf(e), "x binaryData=P9VVVVVVVVU= other=stays type=double value=0.333333");
    Archive::writeValue(e, 0.00001);
    EXPECT_EQ(textOf(e), "x binaryData=PuT4tYjjaPE= other=stays type=double value=1e-05");
    QDomElement none;
    Archive::writeValue(none, 1.0);
    EXPECT_TRUE(none.isNull());
}

// Finding and walking.

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
        data.parentNode().removeChild(data); // the entry may go, its item may not
    });
    EXPECT_THAT(met, ElementsAre("1", "new", "2"));
}

TEST(XmlWalk, RemoveFirstChildTakesADirectChild) {
    QDomElement e = rootOf("<a><in><b id='deep'/></in><b id='1'/><b id='2'/></a>");
    Archive::removeFirstChild(e, "b");
    Archive::removeFirstChild(e, "none");
    EXPECT_EQ(textOf(e), "a [in [b id=deep], b id=2]");
    QDomElement none;
    Archive::removeFirstChild(none, "b");
    EXPECT_TRUE(none.isNull());
}

// forEachChild: the length is read once, the elements are fetched by number from a live list.

Texts walk(QDomDocument doc, const std::function<void(QDomElement&)>& change) {
    Texts met;
    Archive::forEachChild(doc, "b", [&](QDomElement& e) {
        met.push_back(idOf(e));
        change(e);
    });
    return met;
}

const char* const four = "<a><b id='1'/><b id='2'/><in><b id='3'/></in><b id='4'/></a>";

TEST(ForEachChild, MeetsAllDescendantsInDocumentOrder) {
    EXPECT_THAT(
        walk(xml("<b id='0'><b id='1'><x/><b id='2'/></b><c><b id='3'/></c></b>"), [](QDomElement&) {}),
        ElementsAre("0", "1", "2", "3"));
}

TEST(ForEachChild, BelowAnElementTheElementItselfIsNotMet) {
    QDomElement e =
        rootOf("<a><b id='1'><b id='2'/><c><b id='3'/></c></b><b id='4'/></a>").firstChildElement();
    Texts met;
    Archive::forEachChild(e, "b", [&](QDomElement& child) { met.push_back(idOf(child)); });
    EXPECT_THAT(met, ElementsAre("2", "3"));
}

TEST(ForEachChild, NothingToMeet) {
    QDomDocument empty;
    QDomElement none;
    int calls = 0;
    Archive::forEachChild(empty, "b", [&](QDomElement&) { ++calls; });
    Archive::forEachChild(none, "b", [&](QDomElement&) { ++calls; });
    QDomDocument doc = xml(four);
    Archive::forEachChild(doc, "none", [&](QDomElement&) { ++calls; });
    EXPECT_EQ(calls, 0);
}

TEST(ForEachChild, RemovingTheCurrentElementSkipsEverySecond) {
    QDomDocument doc = xml(four);
    const Texts met = walk(doc, [](QDomElement& e) {
        if (!e.isNull())
            e.parentNode().removeChild(e);
    });
    EXPECT_THAT(met, ElementsAre("1", "3", "null", "null"));
    EXPECT_EQ(textOf(doc.documentElement()), "a [b id=2, in, b id=4]");
}

TEST(ForEachChild, AddingBeforeTheCurrentElementMeetsItAgain) {
    const Texts met = walk(xml(four), [](QDomElement& e) {
        QDomElement added = e.ownerDocument().createElement("b");
        added.setAttribute("id", "new");
        e.parentNode().insertBefore(added, e);
    });
    EXPECT_THAT(met, ElementsAre("1", "1", "1", "1"));
}

TEST(ForEachChild, AddingBehindTheCurrentElementMeetsTheNewOne) {
    int added = 0;
    const Texts met = walk(xml(four), [&](QDomElement& e) {
        QDomElement next = e.ownerDocument().createElement("b");
        next.setAttribute("id", "new" + QString::number(++added));
        e.parentNode().insertAfter(next, e);
    });
    EXPECT_THAT(met, ElementsAre("1", "new1", "new2", "new3"));
}

TEST(ForEachChild, AddingBelowTheCurrentElementMeetsTheNewOne) {
    int added = 0;
    const Texts met = walk(xml(four), [&](QDomElement& e) {
        QDomElement child = e.ownerDocument().createElement("b");
        child.setAttribute("id", "new" + QString::number(++added));
        e.appendChild(child);
    });
    EXPECT_THAT(met, ElementsAre("1", "new1", "new2", "new3"));
}

TEST(ForEachChild, AddingAtTheEndIsNotMetSinceTheLengthIsReadOnce) {
    QDomDocument doc = xml(four);
    const Texts met =
        walk(doc, [&](QDomElement&) { doc.documentElement().appendChild(doc.createElement("b")); });
    EXPECT_THAT(met, ElementsAre("1", "2", "3", "4"));
    EXPECT_EQ(doc.elementsByTagName("b").length(), 8);
}

TEST(ForEachChild, RemovingAnEarlierElementFarAwaySkipsOne) {
    QDomDocument doc = xml("<a><b id='1'/><b id='2'/><b id='3'/><b id='4'/><b id='5'/><b id='6'/></a>");
    const Texts met = walk(doc, [&](QDomElement& e) {
        if (idOf(e) == "4")
            doc.documentElement().removeChild(doc.documentElement().firstChildElement().nextSiblingElement());
    });
    EXPECT_THAT(met, ElementsAre("1", "2", "3", "4", "6", "null"));
}

TEST(ForEachChild, AddingAnEarlierElementFarAwayMeetsOneTwice) {
    QDomDocument doc = xml("<a><c/><b id='1'/><b id='2'/><b id='3'/><b id='4'/></a>");
    const Texts met = walk(doc, [&](QDomElement& e) {
        if (idOf(e) == "3")
            doc.documentElement().firstChildElement("c").appendChild(doc.createElement("b"));
    });
    EXPECT_THAT(met, ElementsAre("1", "2", "3", "3"));
}

TEST(ForEachChild, RemovingWhatIsLeftGivesNullElements) {
    QDomDocument doc = xml(four);
    const Texts met = walk(doc, [&](QDomElement&) {
        if (!doc.documentElement().isNull())
            doc.removeChild(doc.documentElement());
    });
    EXPECT_THAT(met, ElementsAre("1", "null", "null", "null"));
}

TEST(ForEachChild, ElementsOfOtherTagsMayComeAndGo) {
    QDomDocument doc = xml("<a><b id='1'><c/></b><c/><b id='2'><c/></b><c/><b id='3'><c/></b></a>");
    const Texts met = walk(doc, [&](QDomElement& e) {
        e.removeChild(e.firstChildElement("c"));
        e.appendChild(doc.createElement("d"));
        e.parentNode().insertBefore(doc.createElement("d"), e);
        if (e.nextSibling().nodeName() == "c")
            e.parentNode().removeChild(e.nextSibling());
    });
    EXPECT_THAT(met, ElementsAre("1", "2", "3"));
    EXPECT_EQ(textOf(doc.documentElement()), "a [d, b id=1 [d], d, b id=2 [d], d, b id=3 [d]]");
}

/// Makes the same random changes on two equal documents, one walked by forEachChild, one by number through
/// Qt's own list, whose length is read once.
class RandomChanges {
public:
    RandomChanges(const QString& text, unsigned seed) : m_random(seed) { m_document.setContent(text); }

    Texts walkByNumber() {
        Texts met;
        const QDomNodeList list = m_document.elementsByTagName("b");
        const int length = list.length();
        for (int i = 0; i < length; ++i)
            step(list.item(i).toElement(), met);
        return met;
    }

    Texts walkByForEachChild() {
        Texts met;
        Archive::forEachChild(m_document, "b", [&](QDomElement& e) { step(e, met); });
        return met;
    }

    QString text() const { return m_document.toString(-1); }

private:
    static void collect(const QDomElement& e, std::vector<QDomElement>& elements) {
        for (QDomElement child = e.firstChildElement(); !child.isNull(); child = child.nextSiblingElement()) {
            elements.push_back(child);
            collect(child, elements);
        }
    }

    void step(const QDomElement& e, Texts& met) {
        met.push_back(idOf(e));
        std::vector<QDomElement> elements;
        collect(m_document.documentElement(), elements);
        const auto kind = m_random() % 12;
        const auto place = m_random();
        if (elements.empty())
            return;
        QDomElement other = elements[place % elements.size()];
        if (place % 2 && !e.isNull())
            other = e; // also where it stands nowhere any more
        QDomElement added = m_document.createElement(kind % 2 ? "b" : "c");
        added.setAttribute("id", "n" + QString::number(++m_added));
        if (kind < 2)
            other.parentNode().removeChild(other);
        else if (kind < 4)
            other.parentNode().insertBefore(added, other);
        else if (kind < 6)
            other.parentNode().insertAfter(added, other);
        else if (kind < 8)
            other.appendChild(added);
    }

    QDomDocument m_document;
    std::mt19937 m_random;
    int m_added = 0;
};

QString randomText(unsigned seed) {
    std::mt19937 random(seed);
    QString text = "<a>";
    std::vector<QString> open;
    for (int i = 0; i < 24; ++i) {
        const QString tag = random() % 3 ? "b" : "c";
        text += '<' + tag + " id='" + QString::number(i) + "'>";
        open.push_back(tag);
        while (!open.empty() && random() % 2) {
            text += "</" + open.back() + '>';
            open.pop_back();
        }
    }
    for (; !open.empty(); open.pop_back())
        text += "</" + open.back() + '>';
    return text + "</a>";
}

TEST(ForEachChild, MeetsWhatALiveListGivesWhateverTheCallbackDoes) {
    for (unsigned seed = 0; seed < 400; ++seed) {
        RandomChanges expected(randomText(seed), seed);
        RandomChanges actual(randomText(seed), seed);
        ASSERT_EQ(actual.walkByForEachChild(), expected.walkByNumber()) << "seed " << seed;
        ASSERT_EQ(actual.text(), expected.text()) << "seed " << seed;
    }
}

// More elements than a list that is built again after each call could bear: 3,400 of them.

QDomDocument manyElements(int count) {
    QDomDocument doc;
    QDomElement root = doc.createElement("a");
    doc.appendChild(root);
    for (int i = 0; i < count; ++i) {
        QDomElement e = doc.createElement("b");
        e.setAttribute("id", QString::number(i));
        root.appendChild(e);
    }
    return doc;
}

TEST(ForEachChild, InABigDocumentAddingToEachElementMeetsEachOnce) {
    QDomDocument doc = manyElements(100'000);
    int expected = 0;
    Archive::forEachChild(doc, "b", [&](QDomElement& e) {
        ASSERT_EQ(e.attribute("id").toInt(), expected++);
        e.appendChild(doc.createElement("c"));
    });
    EXPECT_EQ(expected, 100'000);
}

TEST(ForEachChild, InABigDocumentRemovingTheCurrentElementSkipsEverySecond) {
    QDomDocument doc = manyElements(3'400);
    int calls = 0;
    int nulls = 0;
    Archive::forEachChild(doc, "b", [&](QDomElement& e) {
        if (e.isNull()) {
            ++nulls;
        } else {
            ASSERT_EQ(e.attribute("id").toInt(), 2 * calls);
            e.parentNode().removeChild(e);
        }
        ++calls;
    });
    EXPECT_EQ(calls, 3'400);
    EXPECT_EQ(nulls, 1'700);
}

TEST(ForEachChild, InABigDocumentAddingBeforeOrBehindShiftsTheRest) {
    QDomDocument doc = manyElements(3'400);
    std::vector<int> met;
    Archive::forEachChild(doc, "b", [&](QDomElement& e) {
        met.push_back(e.attribute("id").toInt());
        QDomElement added = doc.createElement("b");
        added.setAttribute("id", "-1");
        if (met.size() == 10)
            e.parentNode().insertBefore(added, e);
        if (met.size() == 20)
            e.parentNode().insertAfter(added, e);
    });
    ASSERT_EQ(met.size(), 3'400U);
    EXPECT_EQ(met[9], 9);
    EXPECT_EQ(met[10], 9);
    EXPECT_EQ(met[11], 10);
    EXPECT_EQ(met[19], 18);
    EXPECT_EQ(met[20], -1);
    EXPECT_EQ(met[21], 19);
    EXPECT_EQ(met.back(), 3'397);
}

// Keeping arrays.

TEST(XmlArrays, AppendCountsSizeUp) {
    QDomElement array = rootOf("<a size='2'><Item index='1'/><Item index='2'/></a>");
    QDomDocument doc = array.ownerDocument();
    QDomElement item = Archive::appendArrayElement(doc, array);
    item.setAttribute("id", "new");
    EXPECT_EQ(textOf(array), "a size=3 [Item index=1, Item index=2, Item id=new index=3 type=Item]");
}

TEST(XmlArrays, AppendGoesBySizeNotByItems) {
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
    Archive::appendArrayElement(doc, greatest); // wraps, and nothing overflows
    EXPECT_EQ(textOf(greatest), "a size=-9223372036854775808 [Item index=-9223372036854775808 type=Item]");
}

TEST(XmlArrays, AppendByNameTakesTheFirstChildOrMakesIt) {
    QDomElement parent =
        rootOf("<p><in><list size='5'/></in><list size='1'><Item index='1'/></list><list/></p>");
    QDomDocument doc = parent.ownerDocument();
    Archive::appendArrayElement(doc, parent, "list");
    EXPECT_EQ(textOf(parent),
              "p [in [list size=5], list size=2 [Item index=1, Item index=2 type=Item], list]");
    Archive::appendArrayElement(doc, parent, "other");
    EXPECT_EQ(textOf(parent.lastChildElement()), "other size=1 type=Array [Item index=1 type=Item]");
}

TEST(XmlArrays, PrependMovesAllIndexesUp) {
    QDomElement array = rootOf("<a size='3'><Item index='1'/><Item index='2'/><Item index='3'/></a>");
    QDomDocument doc = array.ownerDocument();
    QDomElement item = Archive::prependArrayElement(doc, array);
    item.setAttribute("id", "new");
    EXPECT_EQ(textOf(array),
              "a size=4 [Item id=new index=1 type=Item, Item index=2, Item index=3, Item index=4]");
}

TEST(XmlArrays, PrependKeepsGapsAndStandsBeforeAnyElement) {
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

TEST(XmlArrays, PrependByNameTakesTheFirstChildOrMakesIt) {
    QDomElement parent = rootOf("<p><list size='1'><Item index='1'/></list><list size='5'/></p>");
    QDomDocument doc = parent.ownerDocument();
    Archive::prependArrayElement(doc, parent, "list");
    Archive::prependArrayElement(doc, parent, "other");
    EXPECT_EQ(textOf(parent), "p [list size=2 [Item index=1 type=Item, Item index=2], list size=5, "
                              "other size=1 type=Array [Item index=1 type=Item]]");
}

TEST(XmlArrays, NullArraysAreQuietlyPassedOver) {
    const QtWarnings warnings;
    QDomDocument doc;
    QDomElement none;
    EXPECT_EQ(textOf(Archive::appendArrayElement(doc, none)), "Item index=1 type=Item");
    Archive::prependArrayElement(doc, none);
    EXPECT_FALSE(Archive::removeItemsFromList(none, [](QDomElement&) { return true; }));
    EXPECT_FALSE(Archive::removePredeclare(none, 0));
    EXPECT_TRUE(none.isNull());
    EXPECT_EQ(QtWarnings::count, 0);
}

TEST(XmlArrays, RemoveItemsRenumbersEvenWhereNothingGoes) {
    QDomElement array = rootOf("<a size='2'><Item index='5'/><Item index='6'/></a>");
    EXPECT_FALSE(Archive::removeItemsFromList(array, [](QDomElement&) { return false; }));
    EXPECT_EQ(textOf(array), "a size=2 [Item index=1, Item index=2]");
    QDomElement bare = rootOf("<a><Item/></a>");
    EXPECT_FALSE(Archive::removeItemsFromList(bare, [](QDomElement&) { return false; }));
    EXPECT_EQ(textOf(bare), "a [Item index=1]"); // no size is made
}

TEST(XmlArrays, RemoveItemsCountsTheOldSizeDown) {
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

TEST(XmlArrays, RemoveItemsAsksForTheFirstDataOfEachDirectItem) {
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

// Keeping predeclarations.

TEST(XmlPredeclarations, NewObjectTakesTwoNumbers) {
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

TEST(XmlPredeclarations, ObjectWithAnIdTakesOneNumber) {
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

TEST(XmlPredeclarations, MissingPredeclarationsStillTakeTheNumbers) {
    const QtWarnings warnings;
    QDomDocument doc;
    QDomElement none;
    long long maxId = 10;
    EXPECT_EQ(Archive::addPredeclaration(none, doc, "T", 0, maxId, -1, {4}), 11);
    EXPECT_EQ(maxId, 12);
    EXPECT_TRUE(none.isNull());
    EXPECT_EQ(QtWarnings::count, 0);
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

TEST(XmlPredeclarations, RemovePredeclareTakesAllRecordsOfTheObject) {
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

TEST(XmlPredeclarations, RemovingAtOnceIsRemovingOneByOne) {
    for (const QSet<long long>& ids : {QSet<long long>{5, 6}, {0, 99}, {99}, {}, {5, 6, 0}}) {
        QDomElement atOnce = rootOf(records);
        QDomElement oneByOne = rootOf(records);
        bool removed = false;
        for (const long long id : ids)
            removed = Archive::removePredeclare(oneByOne, id) || removed;
        EXPECT_EQ(Archive::Internal::removePredeclares(atOnce, ids), removed);
        EXPECT_EQ(textOf(atOnce), textOf(oneByOne));
    }
}

// The greatest object id.

TEST(MaxObjectId, StartsAtOne) {
    EXPECT_EQ(Archive::getMaxObjectId({}), 1);
    EXPECT_EQ(Archive::getMaxObjectId("<a b='7'/>"), 1);
    EXPECT_EQ(Archive::getMaxObjectId("<a objectId='0'/>"), 1);
    EXPECT_EQ(Archive::getMaxObjectId("<a objectId='-5'/>"), 1);
    EXPECT_EQ(Archive::getMaxObjectId("no xml"), 1);
}

TEST(MaxObjectId, LooksAtEveryElementAndOnlyAtObjectId) {
    EXPECT_EQ(Archive::getMaxObjectId("<a objectId='3'><b><c objectId='12'/></b><d objectId='5'/></a>"), 12);
    EXPECT_EQ(Archive::getMaxObjectId("<a objectId='3' oid='90'><oid value='91'/><poid value='92'/></a>"), 3);
    EXPECT_EQ(Archive::getMaxObjectId("<a objectid='9' ObjectId='9' objectIds='9'/>"), 1);
    EXPECT_EQ(Archive::getMaxObjectId("<a xmlns:x='urn:x' x:objectId='9' objectId='4'/>"), 4);
    EXPECT_EQ(
        Archive::getMaxObjectId("<a><!-- <b objectId='9'/> --><![CDATA[<b objectId='9'/>]]>objectId='9'</a>"),
        1);
}

TEST(MaxObjectId, WhatIsNoNumberChangesNothing) {
    EXPECT_EQ(
        Archive::getMaxObjectId("<a objectId='4'><b objectId='abc'/><b objectId='9x'/><b objectId=''/></a>"),
        4);
    EXPECT_EQ(Archive::getMaxObjectId("<a objectId='4'><b objectId='9223372036854775808'/></a>"), 4);
    EXPECT_EQ(Archive::getMaxObjectId("<a objectId='4'><b objectId='9223372036854775807'/></a>"), maxLong);
}

TEST(MaxObjectId, StopsAtTheFirstError) {
    EXPECT_EQ(Archive::getMaxObjectId("<a objectId='4'><b objectId='5'></a><c objectId='6'/>"), 5);
    EXPECT_EQ(Archive::getMaxObjectId("<a objectId='4'/><b objectId='5'/>"), 4);
    EXPECT_EQ(Archive::getMaxObjectId("<a objectId='4'><x:b objectId='5'/><c objectId='6'/></a>"), 4);
    EXPECT_EQ(Archive::getMaxObjectId("<a objectId='4'><b objectId='5'"), 4);
}

/// What the tree gives must be what the text gives.
void expectSameMaximum(const QDomDocument& document, const std::string& what) {
    const QByteArray text = document.toByteArray(1);
    EXPECT_EQ(Archive::Internal::maxObjectId(document), Archive::getMaxObjectId(text)) << what << '\n'
                                                                                       << text.toStdString();
}

TEST(MaxObjectId, TreeAndTextAgreeOnWhatWasRead) {
    const char* const texts[] = {
        "<a/>",
        "<a objectId='5'><b objectId='9'/></a>",
        "<?xml version='1.0'?><a objectId='5'/>",
        "<?xml version='1.0' encoding='UTF-8'?><a objectId='5'/>",
        "<?xml version='1.0' encoding='utf-8' standalone='yes'?><a objectId='5'/>",
        "<?xml version='1.0' encoding='ISO-8859-1'?><a objectId='5' n='\xe4'/>",
        "<?xml version='1.1'?><a objectId='5'/>",
        "<!DOCTYPE a><a objectId='5'/>",
        "<!DOCTYPE a [<!ENTITY e 'x'>]><a objectId='5'>&e;<b objectId='6'/></a>",
        "<!-- first --><a objectId='5'><!-- in --><b objectId='6'/></a><!-- last -->",
        "<a objectId='5'><![CDATA[ <x> ]]><b objectId='6'/></a>",
        "<a objectId='5'><?target data?><b objectId='6'/></a>",
        "<?target data?><a objectId='5'/>",
        "<x:a objectId='5'><b objectId='6'/></x:a>",
        "<a objectId='5'><x:b objectId='6'/><c objectId='7'/></a>",
        "<a xmlns:x='urn:x' objectId='5'><x:b x:objectId='60' objectId='6'/><c objectId='7'/></a>",
        "<a x:objectId='9' objectId='5'><c objectId='7'/></a>",
        "<a objectId='5' n='&#1;'><b objectId='6'/></a>",
        "<a objectId='5' n='&#9;&#10;&#13;'><b objectId='6'/></a>",
        "<a objectId='5' n='\xf0\x9f\x8e\xac'><b objectId='6'>\xf0\x9f\x8e\xac</b></a>",
        "<a objectId='5' n='&#xFFFE;'><b objectId='6'/></a>",
        "<a objectId='5' n='&lt;&amp;&quot;&gt;'><b objectId='6'>]]&gt;</b></a>",
        "<a objectId='&#32;5 '><b objectId='&#9;6&#10;'/></a>",
        "<a objectId='9223372036854775807'><b objectId='9223372036854775808'/></a>",
        "<a objectId='18446744073709551615'/>",
        "<\xc3\xa4 objectId='5'><b \xc3\xb6='1' objectId='6'/></\xc3\xa4>",
        "<a xml:space='preserve' objectId='5'><b objectId='6'/></a>",
        "<a xmlns='urn:a' objectId='5'><b objectId='6'/></a>",
        "<xmlish objectId='5'><b objectId='6'/></xmlish>",
        "<a objectId='5'>text<b objectId='6'/>more &#x85; text</a>",
    };
    for (const char* text : texts) {
        QDomDocument document;
        if (document.setContent(QByteArray(text)))
            expectSameMaximum(document, text);
        else
            ADD_FAILURE() << "not read: " << text;
    }
}

TEST(MaxObjectId, TreeAndTextAgreeOnWhatTheDomAloneCanHold) {
    const auto document = [] { return xml("<a objectId='5'><b objectId='6'/></a>"); };
    // Texts that no parser gives, but a step may have set.
    for (const int unit : {0x0, 0x1, 0x8, 0xB, 0x1F, 0x7F, 0x85, 0xD800, 0xDC00, 0xFFFD, 0xFFFE, 0xFFFF}) {
        QDomDocument inAttribute = document();
        inAttribute.documentElement().setAttribute("n",
                                                   QString("x") + QChar(static_cast<ushort>(unit)) + "y");
        expectSameMaximum(inAttribute, "attribute with " + std::to_string(unit));
        QDomDocument inText = document();
        inText.documentElement().insertBefore(
            inText.createTextNode(QString("x") + QChar(static_cast<ushort>(unit))),
            inText.documentElement().firstChild());
        expectSameMaximum(inText, "text with " + std::to_string(unit));
    }
    for (const char* name :
         {"n:m", ":n", "n:", "xmlns:n", "xmlns", "xml:n", "1n", "n m", "", "n=\"1\" m", "\xc3\xb6"}) {
        QDomDocument withAttribute = document();
        withAttribute.documentElement().setAttribute(QString::fromUtf8(name), "1");
        expectSameMaximum(withAttribute, std::string("attribute named ") + name);
        QDomDocument withElement = document();
        QDomElement element = withElement.createElement("other");
        element.setTagName(QString::fromUtf8(name));
        element.setAttribute("objectId", "60");
        withElement.documentElement().insertBefore(element, withElement.documentElement().firstChild());
        expectSameMaximum(withElement, std::string("element named ") + name);
    }
}

TEST(MaxObjectId, TreeAndTextAgreeOnSeveralDocumentElementsAndStrayNodes) {
    QDomDocument document = xml("<a objectId='5'><b objectId='6'/></a>");
    QDomElement second = document.createElement("c");
    second.setAttribute("objectId", "70");
    document.appendChild(second);
    expectSameMaximum(document, "two document elements");
    document.insertBefore(document.createComment("first"), document.firstChild());
    expectSameMaximum(document, "comment first");
    document.documentElement().appendChild(document.createEntityReference("none"));
    expectSameMaximum(document, "entity reference");

    expectSameMaximum(QDomDocument(), "nothing");
    QDomDocument onlyComment;
    onlyComment.appendChild(onlyComment.createComment("x"));
    expectSameMaximum(onlyComment, "only a comment");
}

TEST(MaxObjectId, TreeAndTextAgreeOnDeclarations) {
    for (const char* data : {"version=\"1.0\"", "version='1.0'", "version=\"1.0\" encoding=\"UTF-8\"",
                             "version=\"1.1\"", "version=\"2.0\"", "version=\"1.0\" standalone=\"yes\"",
                             "version=\"1.0\" standalone=\"maybe\"", "encoding=\"UTF-8\"", "",
                             "version=\"1.0\" encoding=\"utf-8x\"", "version=\"1.0\" encoding=\"UTF-16\"",
                             "nonsense", "version=\"1.0\" encoding=\"x\" standalone=\"utf-8\"",
                             "version=\"1.0\" other=\"1\"", "version = \"1.0\" "}) {
        QDomDocument document = xml("<a objectId='5'/>");
        document.insertBefore(document.createProcessingInstruction("xml", data), document.firstChild());
        expectSameMaximum(document, std::string("declaration ") + data);
    }
    QDomDocument late = xml("<a objectId='5'><b objectId='6'/></a>");
    late.documentElement().insertBefore(late.createProcessingInstruction("xml", "version=\"1.0\""),
                                        late.documentElement().firstChild());
    expectSameMaximum(late, "declaration inside");
}

TEST(MaxObjectId, RunningIdsAreSearchedForOnce) {
    QDomDocument document = xml("<a objectId='5'/>");
    Archive::Internal::ObjectIds ids(document);
    EXPECT_EQ(ids.next(), 6);
    document.documentElement().setAttribute("objectId", "50");
    EXPECT_EQ(ids.next(), 7);
    EXPECT_EQ(ids.greatest(), 7);
}

} // namespace
