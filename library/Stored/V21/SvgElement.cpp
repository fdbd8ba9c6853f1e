#include "Stored/V21/SvgElement.h"

#include "Stored/V21/Internal/Names.h"

#include <QDomElement>

namespace Stored::V21 {

SvgElement::SvgElement(const QDomNode& node, const QDomNode& root)
    : id(node.toElement().attribute(Internal::Names::idName)) {
    int before = 0;
    for (QDomNode current = node; !current.isNull() && current != root;) {
        const QDomNode sibling = current.previousSibling();
        if (!sibling.isNull()) {
            current = sibling;
            ++before;
            continue;
        }
        path.prepend(before);
        pathKey.prepend(QString::number(before));
        before = 0;
        current = current.parentNode();
        if (current.toElement().hasAttribute(Internal::Names::visibilityName))
            underVisibility = true;
        if (current.nodeName() == QStringLiteral("defs"))
            underDefs = true;
    }
}

QDomNode SvgElement::resolve(const QDomNode& root) const {
    QDomNode node = root;
    for (const int before : path) {
        node = node.firstChild();
        for (int passed = 0; passed < before && !node.isNull(); ++passed)
            node = node.nextSibling();
    }
    return node;
}

} // namespace Stored::V21
