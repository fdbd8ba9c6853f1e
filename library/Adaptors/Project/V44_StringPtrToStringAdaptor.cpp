#include "Adaptors/Project/V44_StringPtrToStringAdaptor.h"

#include "Archive/Internal/Outline.h"
#include "Archive/Internal/StringPtr.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <QRegularExpression>

namespace Words = Archive::Words;
using Archive::Internal::Outline;

namespace Project {
namespace {

// The change is one of the text: a match counts wherever it stands, also at the end of a longer attribute name or
// in running text, and what the text can't carry is lost. Most trees say beyond doubt what their text would become,
// and writing and reading it again costs more than loading it did.

const QString newType = QStringLiteral("String");

void convertText(QDomDocument& document) {
    static const QRegularExpression stringPtr(QStringLiteral("type\\s*=\\s*\"StringPtr\""));
    QString text = document.toString(1);
    text.replace(stringPtr, QStringLiteral("type=\"%1\"").arg(newType));
    document.setContent(text);
    Outline::forget(document);
}

/// For a document whose text has no matches but its types.
void convertTypes(const QDomDocument& document) {
    for (QDomNode node = document.firstChild(); !node.isNull();
         node = Archive::Internal::nextInDocument(node, document)) {
        QDomElement e = node.toElement();
        if (Archive::typeOf(e) == Words::StringPtr)
            Archive::Internal::setType(e, newType);
    }
}

} // namespace

void V44_StringPtrToStringAdaptor::adapt(QDomDocument& document) {
    // `isNull` stays.
    if (Outline* outline = Outline::of(document); outline && outline->showsTypes())
        return convertTypes(document);
    auto matches = Archive::Internal::stringPtrAttributes(document);
    if (!matches)
        return convertText(document);
    for (QDomAttr& attribute : *matches) {
        attribute.setValue(newType);
        Outline::retyped(attribute.ownerElement());
    }
}

} // namespace Project
