#pragma once

// Searches of the tree. Each gives a list that was collected at once: the caller may change the document while going
// through it, nothing is skipped, and no list is built again after each change.

#include "Archive/Internal/Words.h"

#include <QDomElement>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

namespace Archive::Internal {

using Elements = std::vector<QDomElement>;

/// All descendants of that tag, in document order; in the second form those with that `type`.
Elements elements(const QDomNode& below, const QString& tag);
Elements elements(const QDomNode& below, const QString& tag, const QString& type);

/// All `RootObject` descendants of that `type`.
Elements rootObjects(const QDomNode& below, const QString& type);

/// An element and its `type`.
struct TypedElement {
    QDomElement element;
    QString type;
};

/// A list that does not change while it is used. Copies share their memory.
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

/// Elements of one tag with the types that they had when the list was made.
using TypedElements = SharedList<TypedElement>;

std::shared_ptr<TypedElements::List> typedElements(const QDomNode& below, const QString& tag);

/// The direct children of that tag.
Elements children(const QDomElement& parent, const QString& tag);

/// The first descendant of that tag, as `elementsByTagName(tag)` gives it first, without walking further.
QDomElement firstDescendant(const QDomNode& below, const QString& tag);

/// The first child of the first child ... along a path of tags; a null element where one is missing.
QDomElement childAt(QDomElement e, std::initializer_list<QString> path);

/// The same for all handles of one node, and for no other node as long as one of them lives.
const void* identityOf(const QDomNode& node);

/// The next node behind `node` in document order, its descendants first, that is still below `root`.
QDomNode nextInDocument(const QDomNode& node, const QDomNode& root);
/// The same behind `node` and all its descendants.
QDomNode nextSkippingChildren(const QDomNode& node, const QDomNode& root);

/// Calls `enter` on each element below `below` before and `leave` after all that is in it. Neither may change
/// the tree.
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
