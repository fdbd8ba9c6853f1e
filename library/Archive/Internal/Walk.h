#pragma once

// Searches of the tree. Each result is a snapshot: the caller may change the document while walking through
// it. No element is skipped, and nothing is searched again after a change.

#include "Archive/Internal/Words.h"

#include <QDomElement>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

namespace Archive::Internal {

using Elements = std::vector<QDomElement>;

/// All descendants of that tag, in document order; the second form gives only those of that `type`.
Elements elements(const QDomNode& below, const QString& tag);
Elements elements(const QDomNode& below, const QString& tag, const QString& type);

/// All `RootObject` descendants of that `type`.
Elements rootObjects(const QDomNode& below, const QString& type);

/// An element and its `type`.
struct TypedElement {
    QDomElement element;
    QString type;
};

/// An immutable list. Copies share their memory.
template <class T>
class SharedList {
public:
    using List = std::vector<T>;

    explicit SharedList(std::shared_ptr<const List> list) : m_list(std::move(list)) {}

    typename List::const_iterator begin() const { return m_list->begin(); }
    typename List::const_iterator end() const { return m_list->end(); }
    bool isEmpty() const { return m_list->empty(); }
    /// The list must not be empty.
    const T& last() const { return m_list->back(); }

private:
    std::shared_ptr<const List> m_list;
};

/// Elements of one tag, with their types at the time of the search.
using TypedElements = SharedList<TypedElement>;

std::shared_ptr<TypedElements::List> typedElements(const QDomNode& below, const QString& tag);

/// The direct children of that tag.
Elements children(const QDomElement& parent, const QString& tag);

/// The first descendant of that tag, the same as `elementsByTagName(tag).item(0)`. The search ends there.
QDomElement firstDescendant(const QDomNode& below, const QString& tag);

/// Follows a path of tags, through the first child of each tag. A null element if one is missing.
QDomElement childAt(QDomElement e, std::initializer_list<QString> path);

/// A key for a node in maps. All handles of one node have the same key. Another node can get that key only
/// after the last handle was destroyed.
const void* identityOf(const QDomNode& node);

/// The node after `node` in document order, its first child if it has one; null at the end of `root`.
QDomNode nextInDocument(const QDomNode& node, const QDomNode& root);
/// The same behind `node` and all its descendants.
QDomNode nextSkippingChildren(const QDomNode& node, const QDomNode& root);

/// Calls `enter` for each element below `below` before its descendants, and `leave` after them. Neither may
/// change the tree.
template <class Enter, class Leave>
void walkElements(const QDomNode& below, Enter enter, Leave leave) {
    QDomNode node = below.firstChild();
    while (!node.isNull()) {
        if (node.isElement())
            enter(node.toElement());
        QDomNode next = node.firstChild();
        while (next.isNull() && node != below) {
            if (node.isElement())
                leave(node.toElement());
            next = node.nextSibling();
            node = node.parentNode();
        }
        node = next;
    }
}

} // namespace Archive::Internal
