#include "Archive/Internal/Fields.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Words.h"
#include "Archive/Xml.h"

namespace Archive::Internal {

Fields& Fields::add(const QDomElement& field) {
    if (m_object.isNull() || field.isNull())
        return *this;
    // Quirk: a processing instruction of that name is replaced as well.
    const QDomNode old = m_place == Place::SameName ? m_object.namedItem(field.tagName()) : m_old;
    if (m_place == Place::Behind)
        m_archive.insertAfter(m_object, field, m_last);
    else if (old.isNull())
        m_archive.append(m_object, field);
    else
        m_archive.replace(old, field);
    m_old = QDomElement();
    m_last = field;
    return *this;
}

Fields& Fields::typed(const QString& name, const QString& type, const QString& value) {
    if (m_object.isNull())
        return *this;
    m_archive.m_index.wrote(value);
    return add(createTypeValue(m_archive.m_document, name, type, value));
}

Fields& Fields::boolean(const QString& name, bool value) {
    return add(createBool(m_archive.m_document, name, value));
}

Fields& Fields::int32(const QString& name, int value) {
    return add(createInt32(m_archive.m_document, name, value));
}

Fields& Fields::uint32(const QString& name, unsigned int value) {
    return add(createUInt32(m_archive.m_document, name, value));
}

Fields& Fields::int64(const QString& name, long long value) {
    return add(createInt64(m_archive.m_document, name, value));
}

Fields& Fields::uint64(const QString& name, unsigned long long value) {
    return add(createUInt64(m_archive.m_document, name, value));
}

Fields& Fields::time(const QString& name, MTime value) {
    return add(createMTime(m_archive.m_document, name, value));
}

Fields& Fields::number(const QString& name, double value) {
    return add(createDouble(m_archive.m_document, name, value));
}

Fields& Fields::decimal(const QString& name, double value) {
    QDomElement field =
        createTypeValue(m_archive.m_document, name, QStringLiteral("double"), QString::number(value, 'f', 4));
    field.setAttribute(Words::binaryData, serializeValue(value));
    return add(field);
}

Fields& Fields::string(const QString& name, const QString& text) {
    return typed(name, QStringLiteral("String"), text);
}

Fields& Fields::stringPtr(const QString& name, const QString& text) {
    typed(name, Words::StringPtr, text);
    if (!m_object.isNull())
        m_last.setAttribute(QStringLiteral("isNull"), QStringLiteral("0"));
    return *this;
}

Fields& Fields::imageRef(const QString& name, const QString& ref) {
    m_archive.m_index.wrote(ref);
    return add(createImageRef(m_archive.m_document, name, ref));
}

Fields& Fields::reference(const QString& name, long long id) {
    return add(createObjectRef(m_archive.m_document, name, id));
}

Fields& Fields::reference(const QString& name, const QString& idText) {
    return typed(name, Words::ObjectRef, idText);
}

Fields& Fields::array(const QString& name) {
    return add(createArray(m_archive.m_document, name, 0));
}

Fields& Fields::resourceId(const QString& name, const QString& id, Stored::V57::ResourceType type) {
    m_archive.m_index.wrote(id);
    return add(createResourceId(m_archive.m_document, name, id, type));
}

Fields& Fields::transform(const QString& name, const Stored::V14::Transform& matrix, long long id) {
    if (m_object.isNull())
        return *this;
    const QDomElement field = value2element(m_archive.m_document, name, matrix, id);
    m_archive.m_index.created(field, id);
    return add(field);
}

} // namespace Archive::Internal
