// forEachChild below an element, against a plain loop over a live list whose length is read once.

#include "Archive/Xml.h"

#include <gtest/gtest.h>

#include <QDomDocument>

#include <random>

namespace {

using Met = std::vector<std::string>;

/// The same changes on two equal documents: elements come, go, move and change their tags, also the one below
/// which the walk goes and those above it.
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

    Met byNumber() {
        const QDomNodeList list =
            m_fromDocument ? m_document.elementsByTagName("b") : m_below.elementsByTagName("b");
        const int length = list.length();
        for (int number = 0; number < length; ++number)
            step(list.item(number).toElement());
        return m_met;
    }

    Met byForEachChild() {
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
        m_met.push_back(e.isNull() ? "null" : e.attribute("id").toStdString());
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
            other.setTagName(other.tagName() == "b" ? "c"
                                                    : "b"); // the list sees it after the next change of place
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

    static void move(QDomElement e, const QDomElement& to) {
        for (QDomNode up = to; !up.isNull(); up = up.parentNode()) {
            if (up == e)
                return; // not below itself
        }
        if (!e.parentNode().isDocument())
            QDomElement(to).appendChild(e);
    }

    std::mt19937 m_random;
    bool m_fromDocument;
    QDomDocument m_document;
    std::vector<QDomElement> m_all;
    QDomElement m_below;
    Met m_met;
    int m_added = 0;
};

class ForEachChildAsALiveList : public testing::TestWithParam<bool> {};

TEST_P(ForEachChildAsALiveList, MeetsTheSame) {
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
