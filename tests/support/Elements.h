#pragma once

#include "support/Documents.h"

#include <QDomElement>

#include <map>
#include <string>
#include <vector>

/// Functions for creating and describing elements, for tests of the XML toolkit.
namespace Tests {

using Texts = std::vector<std::string>;

/// The content of an element as "name attribute=value ... [child, ...]", with attributes sorted by name.
inline std::string textOf(const QDomElement& e) {
    if (e.isNull())
        return "null";
    std::map<std::string, std::string> attributes;
    for (int i = 0; i < e.attributes().length(); ++i)
        attributes[e.attributes().item(i).nodeName().toStdString()] =
            e.attributes().item(i).nodeValue().toStdString();
    std::string text = e.tagName().toStdString();
    for (const auto& [name, value] : attributes)
        text += ' ' + name + '=' + value;
    std::string children;
    for (QDomElement child = e.firstChildElement(); !child.isNull(); child = child.nextSiblingElement())
        children += (children.empty() ? "" : ", ") + textOf(child);
    return children.empty() ? text : text + " [" + children + ']';
}

/// The document element of an XML text.
inline QDomElement rootOf(const char* text) {
    static QList<QDomDocument> kept; // an element does not keep its document alive
    kept.append(xml(text));
    return kept.last().documentElement();
}

/// The `id` of an element; "null" for a null element.
inline std::string idOf(const QDomElement& e) {
    return e.isNull() ? "null" : e.attribute("id").toStdString();
}

} // namespace Tests
