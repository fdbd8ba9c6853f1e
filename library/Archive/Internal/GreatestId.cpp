#include "Archive/Internal/GreatestId.h"

#include "Archive/Internal/PlainText.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Internal/Words.h"
#include "Archive/Xml.h"

#include <QXmlStreamReader>

#include <algorithm>

namespace Archive::Internal {
namespace {

// A scan of the text stops at the first error and ignores ids after it. So the tree is searched only if its
// text has no error for certain: plain names, no character that XML forbids, and nothing but elements and
// text below a single document element. Every other document is written and scanned.

/// Nodes with a namespace are not plain: their text has more than their name, and an attribute may occur
/// twice.
bool isPlain(const QDomNode& elementOrAttribute) {
    return isPlainName(elementOrAttribute.nodeName()) && elementOrAttribute.localName().isNull();
}

/// Compares the element's id with the greatest one. False if the element may give an error in the text.
bool readElement(const QDomElement& e, GreatestId& greatest) {
    if (!isPlain(e))
        return false;
    const QDomNamedNodeMap attributes = e.attributes();
    const int length = attributes.length();
    if (length > mostPlainAttributes)
        return false;
    for (int number = 0; number < length; ++number) {
        const QDomNode attribute = attributes.item(number);
        const QString value = attribute.nodeValue();
        if (!isPlain(attribute) || !isPlainText(value))
            return false;
        if (attribute.nodeName() != Words::objectId)
            continue;
        if (const long long id = value.toLongLong(); id > greatest.id)
            greatest = {id, e};
    }
    return true;
}

} // namespace

std::optional<GreatestId> searchGreatestId(const QDomElement& top) {
    GreatestId greatest;
    for (QDomNode node = top; !node.isNull(); node = nextInDocument(node, top)) {
        const bool isPlain = node.isElement()
                                 ? readElement(node.toElement(), greatest)
                                 : node.nodeType() == QDomNode::TextNode && isPlainText(node.nodeValue());
        if (!isPlain)
            return std::nullopt;
    }
    return greatest;
}

GreatestId searchGreatestIdOfPlain(const QDomElement& top) {
    GreatestId greatest;
    for (QDomNode node = top; !node.isNull(); node = nextInDocument(node, top)) {
        const QDomElement e = node.toElement();
        if (const long long id = e.attribute(Words::objectId).toLongLong(); id > greatest.id)
            greatest = {id, e};
    }
    return greatest;
}

bool hasPlainFrame(const QDomDocument& document) {
    if (!document.doctype().name().isEmpty())
        return false; // it is written, but is no child of the document
    bool hasElement = false;
    for (QDomNode node = document.firstChild(); !node.isNull(); node = node.nextSibling()) {
        if (node.isElement() ? hasElement : !isPlainDeclaration(node))
            return false;
        hasElement = hasElement || node.isElement();
    }
    return true;
}

std::optional<GreatestId> searchGreatestId(const QDomDocument& document) {
    if (!hasPlainFrame(document))
        return std::nullopt;
    return document.documentElement().isNull() ? GreatestId() : searchGreatestId(document.documentElement());
}

ScannedIds scanIds(const QByteArray& documentText) {
    ScannedIds ids;
    QXmlStreamReader reader(documentText);
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        const QXmlStreamAttributes attributes = reader.attributes();
        for (const QXmlStreamAttribute& attribute : attributes) {
            if (attribute.qualifiedName() == Words::objectId)
                ids.greatest = std::max(ids.greatest, static_cast<long long>(attribute.value().toLongLong()));
        }
    }
    ids.isComplete = !reader.hasError();
    return ids;
}

} // namespace Archive::Internal
