#include "Archive/Internal/StringPtr.h"

#include "Archive/Internal/GreatestId.h"
#include "Archive/Internal/PlainText.h"
#include "Archive/Internal/Walk.h"

#include <algorithm>

namespace Archive::Internal {
namespace {

using Attributes = std::vector<QDomAttr>;

/// Collects the matching attributes of an element. False if its text may name the type elsewhere or may not
/// give the same element.
bool readElement(const QDomElement& e, Attributes& matches) {
    if (!isPlainName(e.tagName()) || !e.namespaceURI().isNull())
        return false;
    const QDomNamedNodeMap attributes = e.attributes();
    const int length = attributes.length();
    for (int number = 0; number < length; ++number) {
        const QDomNode attribute = attributes.item(number);
        const QString name = attribute.nodeName();
        const QString value = attribute.nodeValue();
        if (!isPlainName(name) || !attribute.namespaceURI().isNull() || !survivesRewriting(value))
            return false;
        if (value == Words::StringPtr && name.endsWith(Words::type))
            matches.push_back(attribute.toAttr());
    }
    return true;
}

/// The same for an element and all its descendants.
bool readTree(const QDomElement& top, Attributes& matches) {
    for (QDomNode node = top; !node.isNull(); node = nextInDocument(node, top)) {
        if (!node.isElement() || !readElement(node.toElement(), matches))
            return false;
    }
    return true;
}

} // namespace

std::optional<Attributes> stringPtrAttributes(const QDomDocument& document) {
    Attributes matches;
    const QDomElement top = document.documentElement();
    const bool isPlain = hasPlainFrame(document) && !document.firstChild().nodeValue().contains('"') &&
                         !top.isNull() && readTree(top, matches);
    return isPlain ? std::optional(std::move(matches)) : std::nullopt;
}

bool showsTypes(const QDomElement& top) {
    Attributes matches;
    return readTree(top, matches) && std::all_of(matches.begin(), matches.end(), [](const QDomAttr& match) {
               return match.name() == Words::type;
           });
}

} // namespace Archive::Internal
