#include "Archive/Internal/Walk.h"

#include "Archive/Internal/Outline.h"

#include <QDomDocument>

namespace Archive::Internal {
namespace {

QDomNodeList listOf(const QDomNode& below, const QString& tag) {
    return below.isDocument() ? below.toDocument().elementsByTagName(tag)
                              : below.toElement().elementsByTagName(tag);
}

} // namespace

Elements search(const QDomNode& below, const QString& tag) {
    Elements result;
    const QDomNodeList list = listOf(below, tag);
    const int length = list.length();
    result.reserve(static_cast<std::size_t>(length));
    for (int number = 0; number < length; ++number)
        result.push_back(list.item(number).toElement());
    return result;
}

Elements elements(const QDomNode& below, const QString& tag) {
    const auto* known = Outline::known(below, tag);
    if (!known)
        return search(below, tag);
    Elements result;
    result.reserve((*known)->size());
    for (const TypedElement& e : **known)
        result.push_back(e.element);
    return result;
}

Elements elements(const QDomNode& below, const QString& tag, const QString& type) {
    Elements result;
    if (const auto* known = Outline::known(below, tag)) {
        for (const TypedElement& e : **known) {
            if (e.type == type)
                result.push_back(e.element);
        }
    } else {
        for (const QDomElement& e : search(below, tag)) {
            if (e.attribute(Words::type) == type)
                result.push_back(e);
        }
    }
    return result;
}

TypedElements typedElements(const QDomNode& below, const QString& tag) {
    const auto* known = Outline::known(below, tag);
    return TypedElements(known ? *known : searchTyped(below, tag));
}

std::shared_ptr<TypedElements::List> searchTyped(const QDomNode& below, const QString& tag) {
    auto result = std::make_shared<TypedElements::List>();
    for (const QDomElement& e : search(below, tag))
        result->push_back({e, e.attribute(Words::type)});
    return result;
}

Elements children(const QDomElement& parent, const QString& tag) {
    Elements result;
    for (QDomElement e = parent.firstChildElement(tag); !e.isNull(); e = e.nextSiblingElement(tag))
        result.push_back(e);
    return result;
}

QDomElement firstDescendant(const QDomNode& below, const QString& tag) {
    for (QDomNode node = nextInDocument(below, below); !node.isNull(); node = nextInDocument(node, below)) {
        if (node.isElement() && node.nodeName() == tag)
            return node.toElement();
    }
    return {};
}

QDomElement childAt(QDomElement e, std::initializer_list<QString> path) {
    for (const QString& tag : path)
        e = e.firstChildElement(tag);
    return e;
}

void removeFromParent(const QDomElement& e) {
    QDomNode parent = e.parentNode();
    if (!parent.isNull())
        removeChild(parent, e);
}

void removeChild(QDomNode& parent, const QDomNode& child) {
    if (!parent.removeChild(child).isNull())
        Outline::removedChild(parent, child);
}

void replaceChild(QDomNode& parent, const QDomNode& created, const QDomNode& old) {
    if (!parent.replaceChild(created, old).isNull())
        Outline::removedChild(parent, old);
}

void setType(QDomElement& e, const QString& type) {
    e.setAttribute(Words::type, type);
    Outline::retyped(e);
}

QDomElement soleArchive(const QDomDocument& document) {
    if (Outline* outline = Outline::of(document)) {
        if (const auto archive = outline->soleArchive())
            return *archive;
    }
    const QDomNodeList found = document.elementsByTagName(Words::Archive);
    return found.length() == 1 ? found.item(0).toElement() : QDomElement();
}

const void* identityOf(const QDomNode& node) {
    struct Handle : QDomNode {
        static const void* bodyOf(const QDomNode& node) { return node.*&Handle::impl; }
    };
    return Handle::bodyOf(node);
}

QDomNode nextInDocument(const QDomNode& node, const QDomNode& root) {
    const QDomNode child = node.firstChild();
    return child.isNull() ? nextBeyond(node, root) : child;
}

QDomNode nextBeyond(QDomNode node, const QDomNode& root) {
    while (!node.isNull() && node != root) {
        const QDomNode sibling = node.nextSibling();
        if (!sibling.isNull())
            return sibling;
        node = node.parentNode();
    }
    return {};
}

} // namespace Archive::Internal
