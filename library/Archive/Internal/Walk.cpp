#include "Archive/Internal/Walk.h"

#include "Archive/Internal/Outline.h"

#include <QDomDocument>

#include <algorithm>
#include <iterator>

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
    Outline* outline = Outline::of(below);
    const Elements* known = outline ? outline->elements(below, tag) : nullptr;
    return known ? *known : search(below, tag);
}

Elements elements(const QDomNode& below, const QString& tag, const QString& type) {
    Elements result;
    const auto keep = [&](const Elements& all) {
        std::copy_if(all.begin(), all.end(), std::back_inserter(result),
                     [&](const QDomElement& e) { return e.attribute(Words::type) == type; });
    };
    Outline* outline = Outline::of(below);
    const Elements* known = outline ? outline->elements(below, tag) : nullptr;
    keep(known ? *known : search(below, tag));
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
        parent.removeChild(e);
}

QDomElement soleArchive(const QDomDocument& document) {
    if (Outline* outline = Outline::of(document)) {
        if (const auto archive = outline->soleArchive())
            return *archive;
    }
    const QDomNodeList found = document.elementsByTagName(Words::Archive);
    return found.length() == 1 ? found.item(0).toElement() : QDomElement();
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
