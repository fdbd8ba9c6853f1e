// forEachChild: the length is read once, the elements are fetched by number from a live list.

#include "Archive/Xml.h"
#include "support/Elements.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDomDocument>

#include <random>

namespace {

using testing::ElementsAre;
using Tests::idOf;
using Tests::rootOf;
using Tests::textOf;
using Tests::Texts;
using Tests::xml;

Texts walk(QDomDocument doc, const std::function<void(QDomElement&)>& change) {
    Texts visited;
    Archive::forEachChild(doc, "b", [&](QDomElement& e) {
        visited.push_back(idOf(e));
        change(e);
    });
    return visited;
}

const char* const four = "<a><b id='1'/><b id='2'/><in><b id='3'/></in><b id='4'/></a>";

TEST(ForEachChild, VisitsAllDescendantsInDocumentOrder) {
    EXPECT_THAT(
        walk(xml("<b id='0'><b id='1'><x/><b id='2'/></b><c><b id='3'/></c></b>"), [](QDomElement&) {}),
        ElementsAre("0", "1", "2", "3"));
}

TEST(ForEachChild, BelowAnElementTheElementItselfIsNotVisited) {
    QDomElement e =
        rootOf("<a><b id='1'><b id='2'/><c><b id='3'/></c></b><b id='4'/></a>").firstChildElement();
    Texts visited;
    Archive::forEachChild(e, "b", [&](QDomElement& child) { visited.push_back(idOf(child)); });
    EXPECT_THAT(visited, ElementsAre("2", "3"));
}

TEST(ForEachChild, NothingToVisit) {
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
    const Texts visited = walk(doc, [](QDomElement& e) {
        if (!e.isNull())
            e.parentNode().removeChild(e);
    });
    EXPECT_THAT(visited, ElementsAre("1", "3", "null", "null"));
    EXPECT_EQ(textOf(doc.documentElement()), "a [b id=2, in, b id=4]");
}

TEST(ForEachChild, AddingBeforeTheCurrentElementVisitsItAgain) {
    const Texts visited = walk(xml(four), [](QDomElement& e) {
        QDomElement added = e.ownerDocument().createElement("b");
        added.setAttribute("id", "new");
        e.parentNode().insertBefore(added, e);
    });
    EXPECT_THAT(visited, ElementsAre("1", "1", "1", "1"));
}

TEST(ForEachChild, AddingAfterTheCurrentElementVisitsTheNewOne) {
    int added = 0;
    const Texts visited = walk(xml(four), [&](QDomElement& e) {
        QDomElement next = e.ownerDocument().createElement("b");
        next.setAttribute("id", "new" + QString::number(++added));
        e.parentNode().insertAfter(next, e);
    });
    EXPECT_THAT(visited, ElementsAre("1", "new1", "new2", "new3"));
}

TEST(ForEachChild, AddingBelowTheCurrentElementVisitsTheNewOne) {
    int added = 0;
    const Texts visited = walk(xml(four), [&](QDomElement& e) {
        QDomElement child = e.ownerDocument().createElement("b");
        child.setAttribute("id", "new" + QString::number(++added));
        e.appendChild(child);
    });
    EXPECT_THAT(visited, ElementsAre("1", "new1", "new2", "new3"));
}

TEST(ForEachChild, AddingAtTheEndIsNotVisitedSinceTheLengthIsReadOnce) {
    QDomDocument doc = xml(four);
    const Texts visited =
        walk(doc, [&](QDomElement&) { doc.documentElement().appendChild(doc.createElement("b")); });
    EXPECT_THAT(visited, ElementsAre("1", "2", "3", "4"));
    EXPECT_EQ(doc.elementsByTagName("b").length(), 8);
}

TEST(ForEachChild, RemovingAnEarlierElementFarAwaySkipsOne) {
    QDomDocument doc = xml("<a><b id='1'/><b id='2'/><b id='3'/><b id='4'/><b id='5'/><b id='6'/></a>");
    const Texts visited = walk(doc, [&](QDomElement& e) {
        if (idOf(e) == "4")
            doc.documentElement().removeChild(doc.documentElement().firstChildElement().nextSiblingElement());
    });
    EXPECT_THAT(visited, ElementsAre("1", "2", "3", "4", "6", "null"));
}

TEST(ForEachChild, AddingAnEarlierElementFarAwayVisitsOneTwice) {
    QDomDocument doc = xml("<a><c/><b id='1'/><b id='2'/><b id='3'/><b id='4'/></a>");
    const Texts visited = walk(doc, [&](QDomElement& e) {
        if (idOf(e) == "3")
            doc.documentElement().firstChildElement("c").appendChild(doc.createElement("b"));
    });
    EXPECT_THAT(visited, ElementsAre("1", "2", "3", "3"));
}

TEST(ForEachChild, RemovingTheRestGivesNullElements) {
    QDomDocument doc = xml(four);
    const Texts visited = walk(doc, [&](QDomElement&) {
        if (!doc.documentElement().isNull())
            doc.removeChild(doc.documentElement());
    });
    EXPECT_THAT(visited, ElementsAre("1", "null", "null", "null"));
}

TEST(ForEachChild, ElementsOfOtherTagsMayBeAddedAndRemoved) {
    QDomDocument doc = xml("<a><b id='1'><c/></b><c/><b id='2'><c/></b><c/><b id='3'><c/></b></a>");
    const Texts visited = walk(doc, [&](QDomElement& e) {
        e.removeChild(e.firstChildElement("c"));
        e.appendChild(doc.createElement("d"));
        e.parentNode().insertBefore(doc.createElement("d"), e);
        if (e.nextSibling().nodeName() == "c")
            e.parentNode().removeChild(e.nextSibling());
    });
    EXPECT_THAT(visited, ElementsAre("1", "2", "3"));
    EXPECT_EQ(textOf(doc.documentElement()), "a [d, b id=1 [d], d, b id=2 [d], d, b id=3 [d]]");
}

// So many elements that building the list again after each call would take too long: 3,400.

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

TEST(ForEachChild, InABigDocumentAddingToEachElementVisitsEachOnce) {
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

TEST(ForEachChild, InABigDocumentAddingBeforeOrAfterShiftsTheRest) {
    QDomDocument doc = manyElements(3'400);
    std::vector<int> visited;
    Archive::forEachChild(doc, "b", [&](QDomElement& e) {
        visited.push_back(e.attribute("id").toInt());
        QDomElement added = doc.createElement("b");
        added.setAttribute("id", "-1");
        if (visited.size() == 10)
            e.parentNode().insertBefore(added, e);
        if (visited.size() == 20)
            e.parentNode().insertAfter(added, e);
    });
    ASSERT_EQ(visited.size(), 3'400U);
    EXPECT_EQ(visited[9], 9);
    EXPECT_EQ(visited[10], 9);
    EXPECT_EQ(visited[11], 10);
    EXPECT_EQ(visited[19], 18);
    EXPECT_EQ(visited[20], -1);
    EXPECT_EQ(visited[21], 19);
    EXPECT_EQ(visited.back(), 3'397);
}

// Gives the same as a plain loop over such a list, whatever the callback does.

/// Makes the same changes on two equal documents: elements are added, removed, moved and renamed, also the
/// element below which the walk runs and its ancestors.
class Changes {
public:
    Changes(unsigned seed, bool fromDocument) : m_random(seed), m_fromDocument(fromDocument) {
        std::mt19937 random(seed + 1000);
        QDomElement root = m_document.createElement("b");
        m_document.appendChild(root);
        m_all.push_back(root);
        for (int i = 1; i < 30; ++i) {
            QDomElement e = m_document.createElement(random() % 3 ? "b" : "c");
            e.setAttribute("id", i);
            const auto place = random() % m_all.size();
            m_all[place].appendChild(e);
            m_all.push_back(e);
        }
        m_below = m_all[1 + seed % 4];
    }

    Texts byNumber() {
        const QDomNodeList list =
            m_fromDocument ? m_document.elementsByTagName("b") : m_below.elementsByTagName("b");
        const int length = list.length();
        for (int number = 0; number < length; ++number)
            step(list.item(number).toElement());
        return m_met;
    }

    Texts byForEachChild() {
        const auto visit = [this](QDomElement& e) { step(e); };
        if (m_fromDocument)
            Archive::forEachChild(m_document, "b", visit);
        else
            Archive::forEachChild(m_below, "b", visit);
        return m_met;
    }

    std::string text() const { return m_document.toString(-1).toStdString(); }

private:
    void step(const QDomElement& e) {
        m_met.push_back(idOf(e));
        const auto kind = m_random() % 12;
        QDomElement other = m_all[m_random() % m_all.size()];
        QDomElement another = m_all[m_random() % m_all.size()];
        if (m_random() % 2 && !e.isNull())
            other = e;
        if (kind == 0 && !other.parentNode().isNull())
            other.parentNode().removeChild(other);
        else if (kind < 3)
            add(other.parentNode(), other);
        else if (kind < 5)
            add(other, QDomNode());
        else if (kind < 7)
            move(other, another);
        else if (kind == 7)
            other.setTagName(
                other.tagName() == "b" ? "c" : "b"); // the list reads it after the next change of the tree
        else if (kind == 8)
            other.setAttribute("changed", m_added);
    }

    void add(QDomNode parent, const QDomNode& before) {
        if (parent.isNull() || parent.isDocument())
            return;
        QDomElement added = m_document.createElement(m_random() % 2 ? "b" : "c");
        added.setAttribute("id", "n" + QString::number(++m_added));
        parent.insertBefore(added, before);
        m_all.push_back(added);
    }

    static void move(const QDomElement& e, const QDomElement& to) {
        for (QDomNode up = to; !up.isNull(); up = up.parentNode()) {
            if (up == e)
                return; // not into itself
        }
        if (!e.parentNode().isDocument())
            QDomElement(to).appendChild(e);
    }

    std::mt19937 m_random;
    bool m_fromDocument;
    QDomDocument m_document;
    std::vector<QDomElement> m_all;
    QDomElement m_below;
    Texts m_met;
    int m_added = 0;
};

class ForEachChildAsALiveList : public testing::TestWithParam<bool> {};

TEST_P(ForEachChildAsALiveList, VisitsTheSame) {
    for (unsigned seed = 0; seed < 1000; ++seed) {
        Changes expected(seed, GetParam());
        Changes actual(seed, GetParam());
        ASSERT_EQ(actual.byForEachChild(), expected.byNumber()) << "seed " << seed;
        ASSERT_EQ(actual.text(), expected.text()) << "seed " << seed;
    }
}

INSTANTIATE_TEST_SUITE_P(Both, ForEachChildAsALiveList, testing::Bool(),
                         [](const auto& choice) { return choice.param ? "OfADocument" : "BelowAnElement"; });

} // namespace
