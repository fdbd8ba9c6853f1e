#include "Archive/Internal/FieldName.h"

namespace Archive::Internal {

QDomElement FieldName::childOf(const QDomElement& parent) const {
    if (!m_literal)
        return parent.firstChildElement(m_text);
    const QLatin1String name(m_literal);
    QDomElement child = parent.firstChildElement();
    while (!child.isNull() && child.tagName() != name)
        child = child.nextSiblingElement();
    return child;
}

const QString& FieldNames::textOf(const FieldName& name) {
    if (!name.m_literal)
        return name.m_text;
    QString& text = m_texts[name.m_literal];
    if (text.isNull())
        text = QString::fromLatin1(name.m_literal);
    return text;
}

} // namespace Archive::Internal
