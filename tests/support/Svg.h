#pragma once

#include "Stored/V21/SvgDocument.h"

#include <QDomElement>

#include <memory>

/// Functions for tests of the SVG model.
namespace Tests {

/// The first element of that id in the live document; a null element if there is none.
inline QDomElement liveElement(const Stored::V21::SvgDocument& document, const QString& id) {
    QDomNode node = document.dom().documentElement();
    while (!node.isNull() && node.toElement().attribute("id") != id) {
        QDomNode next = node.firstChild();
        for (; next.isNull() && !node.isNull(); node = node.parentNode())
            next = node.nextSibling();
        node = next;
    }
    return node.toElement();
}

/// Its attribute; "(none)" if it is missing.
inline QString live(const Stored::V21::SvgDocument& document, const QString& id, const QString& attribute) {
    return liveElement(document, id).attribute(attribute, "(none)");
}

/// An animation as an object of that class; null if it has another class.
template <class Leaf>
const Leaf* leaf(const std::shared_ptr<Stored::V21::AnimatableAttribute>& attribute) {
    return dynamic_cast<const Leaf*>(attribute.get());
}

} // namespace Tests
