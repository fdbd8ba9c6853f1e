#include "Archive/Internal/Fields.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Words.h"
#include "Archive/Xml.h"

namespace Archive::Internal {

const QString& Fields::textOf(const FieldName& name) const {
    return m_archive.m_fieldNames.textOf(name);
}

Fields& Fields::add(const QDomElement& field) {
    if (m_object.isNull() || field.isNull())
        return *this;
    // Quirk: a processing instruction of that name is replaced as well.
    const QDomNode old = m_place == Place::SameName ? m_object.namedItem(field.tagName()) : m_old;
    if (m_place == Place::Behind)
        m_archive.placeBehind(m_object, field, m_last);
    else if (old.isNull())
        m_archive.append(m_object, field);
    else
        m_archive.replace(old, field);
    m_old = QDomElement();
    m_last = field;
    return *this;
}

Fields& Fields::typed(const FieldName& name, const QString& type, const QString& value) {
    if (m_object.isNull())
        return *this;
    m_archive.m_index.wrote(value);
    const QDomElement field = createTypeValue(m_archive.m_document, textOf(name), type, value);
    m_archive.m_index.typed(field, type);
    return add(field);
}

Fields& Fields::boolean(const FieldName& name, bool value) {
    return add(createBool(m_archive.m_document, textOf(name), value));
}

Fields& Fields::int32(const FieldName& name, int value) {
    return add(createInt32(m_archive.m_document, textOf(name), value));
}

Fields& Fields::uint32(const FieldName& name, unsigned int value) {
    return add(createUInt32(m_archive.m_document, textOf(name), value));
}

Fields& Fields::int64(const FieldName& name, long long value) {
    return add(createInt64(m_archive.m_document, textOf(name), value));
}

Fields& Fields::uint64(const FieldName& name, unsigned long long value) {
    return add(createUInt64(m_archive.m_document, textOf(name), value));
}

Fields& Fields::time(const FieldName& name, MTime value) {
    return add(createMTime(m_archive.m_document, textOf(name), value));
}

Fields& Fields::number(const FieldName& name, double value) {
    return add(createDouble(m_archive.m_document, textOf(name), value));
}

Fields& Fields::decimal(const FieldName& name, double value) {
    QDomElement field = createTypeValue(m_archive.m_document, textOf(name), QStringLiteral("double"),
                                        QString::number(value, 'f', 4));
    field.setAttribute(Words::binaryData, serializeValue(value));
    return add(field);
}

Fields& Fields::string(const FieldName& name, const QString& text) {
    return typed(name, QStringLiteral("String"), text);
}

Fields& Fields::stringPtr(const FieldName& name, const QString& text) {
    typed(name, Words::StringPtr, text);
    if (!m_object.isNull())
        m_last.setAttribute(QStringLiteral("isNull"), QStringLiteral("0"));
    return *this;
}

Fields& Fields::imageRef(const FieldName& name, const QString& ref) {
    m_archive.m_index.wrote(ref);
    return add(createImageRef(m_archive.m_document, textOf(name), ref));
}

Fields& Fields::reference(const FieldName& name, long long id) {
    return add(createObjectRef(m_archive.m_document, textOf(name), id));
}

Fields& Fields::reference(const FieldName& name, const QString& idText) {
    return typed(name, Words::ObjectRef, idText);
}

Fields& Fields::array(const FieldName& name) {
    return add(createArray(m_archive.m_document, textOf(name), 0));
}

Fields& Fields::resourceId(const FieldName& name, const QString& id, Stored::V57::ResourceType type) {
    m_archive.m_index.wrote(id);
    return add(createResourceId(m_archive.m_document, textOf(name), id, type));
}

Fields& Fields::transform(const FieldName& name, const Stored::V14::Transform& matrix, long long id) {
    if (m_object.isNull())
        return *this;
    const QDomElement field = value2element(m_archive.m_document, textOf(name), matrix, id);
    m_archive.m_index.created(field, id);
    return add(field);
}

} // namespace Archive::Internal
