#include "Archive/Internal/Walk.h"

#include <QDomDocument>

namespace Archive::Internal {
namespace {

QDomNodeList listOf(const QDomNode& below, const QString& tag) {
    return below.isDocument() ? below.toDocument().elementsByTagName(tag)
                              : below.toElement().elementsByTagName(tag);
}

template <class Keep>
Elements collect(const QDomNodeList& list, Keep keep) {
    Elements result;
    const int length = list.length();
    for (int number = 0; number < length; ++number) {
        QDomElement e = list.item(number).toElement();
        if (keep(e))
            result.push_back(std::move(e));
    }
    return result;
}

} // namespace

Elements elements(const QDomNode& below, const QString& tag) {
    return collect(listOf(below, tag), [](const QDomElement&) { return true; });
}

Elements elements(const QDomNode& below, const QString& tag, const QString& type) {
    return collect(listOf(below, tag),
                   [&](const QDomElement& e) { return e.attribute(Words::type) == type; });
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

void removeFromParent(QDomElement e) {
    QDomNode parent = e.parentNode();
    if (!parent.isNull())
        parent.removeChild(e);
}

QDomElement soleArchive(const QDomDocument& document) {
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
