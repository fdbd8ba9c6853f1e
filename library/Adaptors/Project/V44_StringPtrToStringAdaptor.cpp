#include "Adaptors/Project/V44_StringPtrToStringAdaptor.h"

#include "Archive/Internal/Outline.h"
#include "Archive/Internal/PlainText.h"
#include "Archive/Internal/Walk.h"

#include <QDomAttr>
#include <QRegularExpression>

#include <algorithm>
#include <optional>
#include <vector>

namespace Project {
namespace {

using Attributes = std::vector<QDomAttr>;

// The change is one of the text: a match counts wherever it stands, also at the end of a longer attribute name or
// in running text, and what the text can't carry is lost. Most trees say beyond doubt what their text would become,
// and writing and reading it again costs more than loading it did.

/// Characters that are written and read again as they are.
bool survives(const QString& value) {
    return std::all_of(value.begin(), value.end(), [](QChar ch) {
        const ushort c = ch.unicode();
        return (c >= 0x20 && c < 0x7F) || (c >= 0xA0 && c < 0xD800);
    });
}

/// Takes in the attributes of an element that match; false where its text is in doubt.
bool readElement(const QDomElement& e, Attributes& matches) {
    if (!Archive::Internal::isPlainName(e.tagName()) || !e.namespaceURI().isNull())
        return false;
    const QDomNamedNodeMap attributes = e.attributes();
    const int length = attributes.length();
    for (int number = 0; number < length; ++number) {
        const QDomNode attribute = attributes.item(number);
        const QString name = attribute.nodeName();
        const QString value = attribute.nodeValue();
        if (!Archive::Internal::isPlainName(name) || !attribute.namespaceURI().isNull() || !survives(value))
            return false;
        if (value == QLatin1String("StringPtr") && name.endsWith(QLatin1String("type")))
            matches.push_back(attribute.toAttr());
    }
    return true;
}

/// The attributes that match in the document's text; nothing where only the text can tell, or where it would not
/// give the same tree when it is read again.
std::optional<Attributes> matchesInTree(const QDomDocument& document) {
    Attributes matches;
    int documentElements = 0;
    for (QDomNode node = document.firstChild(); !node.isNull();
         node = Archive::Internal::nextInDocument(node, document)) {
        if (node.isElement()) {
            documentElements += node.parentNode() == document ? 1 : 0;
            if (!readElement(node.toElement(), matches))
                return std::nullopt;
        } else if (!Archive::Internal::isPlainDeclaration(node) || node.nodeValue().contains('"')) {
            return std::nullopt;
        }
    }
    return documentElements == 1 ? std::optional(std::move(matches)) : std::nullopt;
}

void convertText(QDomDocument& document) {
    static const QRegularExpression stringPtr(QStringLiteral("type\\s*=\\s*\"StringPtr\""));
    QString text = document.toString(1);
    text.replace(stringPtr, QStringLiteral("type=\"String\""));
    document.setContent(text);
    Archive::Internal::Outline::forget(document);
}

} // namespace

void V44_StringPtrToStringAdaptor::adapt(QDomDocument& document) {
    // `isNull` stays.
    auto matches = matchesInTree(document);
    if (!matches)
        return convertText(document);
    for (QDomAttr& attribute : *matches) {
        attribute.setValue(QStringLiteral("String"));
        Archive::Internal::Outline::retyped(attribute.ownerElement());
    }
}

} // namespace Project
