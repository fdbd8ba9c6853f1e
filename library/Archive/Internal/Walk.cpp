#include "Archive/Internal/Walk.h"

#include <QDomDocument>

namespace Archive::Internal {
namespace {

QDomNodeList listOf(const QDomNode& below, const QString& tag) {
    return below.isDocument() ? below.toDocument().elementsByTagName(tag)
                              : below.toElement().elementsByTagName(tag);
}

bool isDeep(QDomNode node) {
    constexpr int fewLevels = 64;
    for (int level = 0; level < fewLevels; ++level) {
        node = node.parentNode();
        if (node.isNull())
            return false;
    }
    return true;
}

/// Searches one child after the other, since a list of all descendants touches each of them.
QDomElement firstInChildren(const QDomNode& below, const QString& tag) {
    for (QDomElement child = below.firstChildElement(); !child.isNull(); child = child.nextSiblingElement()) {
        if (child.tagName() == tag)
            return child;
        const QDomElement found = listOf(child, tag).item(0).toElement();
        if (!found.isNull())
            return found;
    }
    return {};
}

} // namespace

Elements elements(const QDomNode& below, const QString& tag) {
    Elements result;
    if (isDeep(below)) {
        // Each access to an entry of a list takes a walk up to the root.
        const auto enter = [&](const QDomElement& e) {
            if (e.tagName() == tag)
                result.push_back(e);
        };
        walkElements(below, enter, [](const QDomElement&) {});
        return result;
    }
    const QDomNodeList list = listOf(below, tag);
    const int length = list.length();
    result.reserve(static_cast<std::size_t>(length));
    for (int number = 0; number < length; ++number)
        result.push_back(list.item(number).toElement());
    return result;
}

Elements elements(const QDomNode& below, const QString& tag, const QString& type) {
    Elements result = elements(below, tag);
    std::erase_if(result, [&](const QDomElement& e) { return e.attribute(Words::type) != type; });
    return result;
}

Elements rootObjects(const QDomNode& below, const QString& type) {
    return elements(below, Words::RootObject, type);
}

std::shared_ptr<TypedElements::List> typedElements(const QDomNode& below, const QString& tag) {
    auto result = std::make_shared<TypedElements::List>();
    for (const QDomElement& e : elements(below, tag))
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
    // Mostly it is near. If not, lists are faster than a walk with handles.
    int steps = 32;
    for (QDomNode node = nextInDocument(below, below); !node.isNull(); node = nextInDocument(node, below)) {
        if (node.isElement() && node.nodeName() == tag)
            return node.toElement();
        if (--steps == 0)
            return isDeep(below) ? listOf(below, tag).item(0).toElement() : firstInChildren(below, tag);
    }
    return {};
}

QDomElement childAt(QDomElement e, std::initializer_list<QString> path) {
    for (const QString& tag : path)
        e = e.firstChildElement(tag);
    return e;
}

const void* identityOf(const QDomNode& node) {
    struct Handle : QDomNode {
        static const void* bodyOf(const QDomNode& node) { return node.*&Handle::impl; }
    };
    return Handle::bodyOf(node);
}

QDomNode nextInDocument(const QDomNode& node, const QDomNode& root) {
    QDomNode child = node.firstChild();
    return child.isNull() ? nextSkippingChildren(node, root) : child;
}

QDomNode nextSkippingChildren(const QDomNode& node, const QDomNode& root) {
    if (node.isNull() || node == root)
        return {};
    QDomNode next = node.nextSibling();
    if (!next.isNull())
        return next;
    QDomNode ancestor = node.parentNode();
    while (!ancestor.isNull() && ancestor != root) {
        next = ancestor.nextSibling();
        if (!next.isNull())
            return next;
        ancestor = ancestor.parentNode();
    }
    return {};
}

} // namespace Archive::Internal
