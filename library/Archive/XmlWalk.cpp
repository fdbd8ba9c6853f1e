#include "Archive/Internal/GreatestId.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Internal/Words.h"
#include "Archive/Xml.h"

namespace Archive {
namespace {

/// Gives the same elements as fetching by number from a live QDomNodeList, but avoids building the list again
/// after each change. It works on a snapshot of the list and checks, before each element, that the tree
/// around the current element is unchanged. If an element of the tag was added or removed there, it uses the
/// QDomNodeList from then on. A change far from the current element is not noticed; so in small documents,
/// where building the list again is cheap, the QDomNodeList is used from the start.
class LiveList {
public:
    LiveList(const QDomNode& below, const QString& tag, const QDomNodeList& list)
        : m_below(below), m_tag(tag), m_list(list), m_snapshot(Internal::elements(below, tag)) {
        if (m_snapshot.empty())
            return;
        m_beforeFirst = m_snapshot.front().previousSibling();
        m_trusted = hasMoreNodesThan(affordableVisits / m_snapshot.size());
    }

    std::size_t length() const { return m_snapshot.size(); }

    QDomElement fetch(std::size_t number) {
        if (m_trusted && number > 0)
            m_trusted = isUnchangedBefore(number);
        if (!m_trusted)
            return m_list.item(static_cast<int>(number)).toElement();
        m_before = m_snapshot[number].previousSibling();
        return m_snapshot[number];
    }

private:
    /// The most nodes that may be visited in total if the list is built again for each element: some tenths
    /// of a second.
    static constexpr std::size_t affordableVisits = 10'000'000;

    bool hasMoreNodesThan(std::size_t limit) const {
        std::size_t count = 0;
        for (QDomNode node = m_below; !node.isNull(); node = Internal::nextInDocument(node, m_below)) {
            if (++count > limit)
                return true;
        }
        return false;
    }

    bool isUnchangedBefore(std::size_t number) const {
        const QDomElement& previous = m_snapshot[number - 1];
        return isBelow(previous) && previous.previousSibling() == m_before && isBelow(m_snapshot.front()) &&
               m_snapshot.front().previousSibling() == m_beforeFirst && next(previous) == m_snapshot[number];
    }

    bool isBelow(QDomNode node) const {
        while (!node.isNull() && node != m_below)
            node = node.parentNode();
        return !node.isNull();
    }

    QDomNode next(const QDomElement& from) const {
        QDomNode node = Internal::nextInDocument(from, m_below);
        while (!node.isNull() && !(node.isElement() && node.nodeName() == m_tag))
            node = Internal::nextInDocument(node, m_below);
        return node;
    }

    QDomNode m_below;
    QString m_tag;
    QDomNodeList m_list;
    Internal::Elements m_snapshot;
    QDomNode m_beforeFirst;
    QDomNode m_before;
    bool m_trusted = true;
};

void forEach(const QDomNode& below, const QString& name, const QDomNodeList& list,
             const std::function<void(QDomElement&)>& fn) {
    LiveList live(below, name, list);
    for (std::size_t number = 0; number < live.length(); ++number) {
        QDomElement e = live.fetch(number);
        fn(e);
    }
}

} // namespace

QDomElement findChild(const QDomElement& e, const QString& name,
                      const std::function<bool(const QDomElement&)>& pred) {
    for (QDomElement child = e.firstChildElement(name); !child.isNull();
         child = child.nextSiblingElement(name)) {
        if (pred(child))
            return child;
    }
    return {};
}

bool hasChild(const QDomElement& e, const QString& name,
              const std::function<bool(const QDomElement&)>& pred) {
    return !findChild(e, name, pred).isNull();
}

QDomElement findRootBaseOfObject(const QDomElement& e) {
    QDomElement innermost = e;
    for (QDomElement base = e; !base.isNull(); base = base.firstChildElement(Words::BaseOfObject))
        innermost = base;
    return innermost;
}

QDomElement findRootObject(QDomDocument& doc, long long id) {
    for (const QDomElement& e : Internal::elements(doc, Words::RootObject)) {
        if (objectIdOf(e) == static_cast<unsigned long long>(id))
            return e;
    }
    return {};
}

void forEachChild(QDomDocument& doc, const QString& name, const std::function<void(QDomElement&)>& fn) {
    forEach(doc, name, doc.elementsByTagName(name), fn);
}

void forEachChild(QDomElement& e, const QString& name, const std::function<void(QDomElement&)>& fn) {
    forEach(e, name, e.elementsByTagName(name), fn);
}

void iterateArray(const QDomElement& array, const std::function<void(QDomElement&)>& fn) {
    for (QDomElement item = array.firstChildElement(Words::Item); !item.isNull();
         item = item.nextSiblingElement(Words::Item)) {
        QDomElement data = item.firstChildElement(Words::Data);
        fn(data);
    }
}

void removeFirstChild(QDomElement& e, const QString& name) {
    const QDomElement child = e.firstChildElement(name);
    if (!child.isNull())
        e.removeChild(child);
}

long long getMaxObjectId(const QByteArray& documentText) {
    return Internal::scanIds(documentText).greatest;
}

} // namespace Archive
