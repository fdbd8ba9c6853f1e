#pragma once

// For this project's own use. Every walk here gives a list that was collected at once: the caller may change the
// document while going through it, nothing is skipped, and no list is built again after each change.

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

private:
    std::shared_ptr<const List> m_list;
};

/// Elements with the types that they had when the list was made.
using TypedElements = SharedList<TypedElement>;

TypedElements typedElements(const QDomNode& below, const QString& tag);

/// The same as the first form of elements(), whatever an outline knows.
Elements search(const QDomNode& below, const QString& tag);
std::shared_ptr<TypedElements::List> searchTyped(const QDomNode& below, const QString& tag);

/// All `RootObject` descendants of that `type`.
inline Elements rootObjects(const QDomNode& below, const QString& type) {
    return elements(below, Words::RootObject, type);
}

/// The direct children of that tag.
Elements children(const QDomElement& parent, const QString& tag);

/// The first descendant of that tag, as `elementsByTagName(tag)` gives it first, without walking further.
QDomElement firstDescendant(const QDomNode& below, const QString& tag);

/// The first child of the first child ... along a path of tags; a null element where one is missing.
QDomElement childAt(QDomElement e, std::initializer_list<QString> path);

/// Steps remove and replace elements by these functions and not by the tree's own, which tell no outline.
/// Removes an element from the tree, wherever it stands; nothing for one that stands nowhere.
void removeFromParent(const QDomElement& e);
/// Removes a child; nothing for one that stands elsewhere.
void removeChild(QDomNode& parent, const QDomNode& child);
/// Puts `created` in the place of a child; nothing where that stands elsewhere.
void replaceChild(QDomNode& parent, const QDomNode& created, const QDomNode& old);

/// Gives an element another `type`.
void setType(QDomElement& e, const QString& type);

/// The document's one `Archive` element, at any depth; a null element where there are none or several.
QDomElement soleArchive(const QDomDocument& document);

/// How many steps up to take for that many nodes before one walk through the document is cheaper: nodes can be
/// thousands of levels deep.
constexpr std::size_t mostHops(std::size_t nodes) {
    return 1000 + 20 * nodes;
}

/// The same for all handles of one node, and for no other node as long as one of them lives.
const void* identityOf(const QDomNode& node);

/// The next node behind `node` in document order, its descendants first, that is still below `root`.
QDomNode nextInDocument(const QDomNode& node, const QDomNode& root);
/// The same behind `node` and all its descendants.
QDomNode nextBeyond(QDomNode node, const QDomNode& root);

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
