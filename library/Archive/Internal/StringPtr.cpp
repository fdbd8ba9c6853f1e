#include "Archive/Internal/StringPtr.h"

#include "Archive/Xml.h"

namespace Archive::Internal {

QDomElement createStringPtr(QDomDocument& doc, const QString& name, const QString& value) {
    QDomElement e = createTypeValue(doc, name, QStringLiteral("StringPtr"), value);
    e.setAttribute(QStringLiteral("isNull"), QStringLiteral("0"));
    return e;
}

} // namespace Archive::Internal
