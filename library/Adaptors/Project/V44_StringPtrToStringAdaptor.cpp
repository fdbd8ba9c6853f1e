#include "Adaptors/Project/V44_StringPtrToStringAdaptor.h"

#include <QRegularExpression>

namespace Project {

void V44_StringPtrToStringAdaptor::adapt(QDomDocument& document) {
    // On the text, not on the tree: a match counts wherever it stands, also at the end of a longer attribute name
    // or in running text, and what the text can't carry is lost. `isNull` stays.
    static const QRegularExpression stringPtr(QStringLiteral("type\\s*=\\s*\"StringPtr\""));
    QString text = document.toString(1);
    text.replace(stringPtr, QStringLiteral("type=\"String\""));
    document.setContent(text);
}

} // namespace Project
