#include "Archive/Internal/Words.h"
#include "Archive/Xml.h"

namespace Archive {

QDomElement createTypeValue(QDomDocument& doc, const QString& name, const QString& type,
                            const QString& value) {
    QDomElement e = doc.createElement(name);
    e.setAttribute(Words::type, type);
    e.setAttribute(Words::value, value);
    return e;
}

QDomElement createArray(QDomDocument& doc, const QString& name, long long size) {
    QDomElement e = doc.createElement(name);
    e.setAttribute(Words::type, Words::Array);
    e.setAttribute(Words::size, QString::number(size));
    return e;
}

QDomElement createArrayItem(QDomDocument& doc, long long index) {
    QDomElement e = doc.createElement(Words::Item);
    e.setAttribute(Words::type, Words::Item);
    e.setAttribute(Words::index, QString::number(index));
    return e;
}

QDomElement createBool(QDomDocument& doc, const QString& name, bool value) {
    return createTypeValue(doc, name, QStringLiteral("bool"),
                           value ? QStringLiteral("1") : QStringLiteral("0"));
}

QDomElement createInt32(QDomDocument& doc, const QString& name, int value) {
    return createTypeValue(doc, name, QStringLiteral("int32_t"), QString::number(value));
}

QDomElement createUInt32(QDomDocument& doc, const QString& name, unsigned int value) {
    return createTypeValue(doc, name, QStringLiteral("uint32_t"), QString::number(value));
}

QDomElement createInt64(QDomDocument& doc, const QString& name, long long value) {
    return createTypeValue(doc, name, QStringLiteral("int64_t"), QString::number(value));
}

QDomElement createUInt64(QDomDocument& doc, const QString& name, unsigned long long value) {
    return createTypeValue(doc, name, QStringLiteral("uint64_t"), QString::number(value));
}

QDomElement createDouble(QDomDocument& doc, const QString& name, double value) {
    QDomElement e = doc.createElement(name);
    writeValue(e, value);
    return e;
}

QDomElement createMTime(QDomDocument& doc, const QString& name, MTime value) {
    return createInt64(doc, name, value.count());
}

QDomElement createString(QDomDocument& doc, const QString& name, const QString& value) {
    return createTypeValue(doc, name, QStringLiteral("String"), value);
}

QDomElement createImageRef(QDomDocument& doc, const QString& name, const QString& ref) {
    QDomElement e = doc.createElement(name);
    e.setAttribute(Words::type, QStringLiteral("ImageRef"));
    e.setAttribute(Words::ref, ref);
    return e;
}

QDomElement createObjectRef(QDomDocument& doc, const QString& name, long long id) {
    return createTypeValue(doc, name, Words::ObjectRef, QString::number(id));
}

QDomElement createObject(QDomDocument& doc, const QString& name, const QString& type, long long id) {
    QDomElement e = doc.createElement(name);
    e.setAttribute(Words::type, type);
    e.setAttribute(Words::objectId, QString::number(id));
    return e;
}

QDomElement createResourceId(QDomDocument& doc, const QString& name, const QString& id,
                             Stored::V57::ResourceType type) {
    QDomElement array = createArray(doc, name, 2);
    QDomElement identifier = createArrayItem(doc, 1);
    identifier.appendChild(createString(doc, Words::Data, id));
    array.appendChild(identifier);
    QDomElement kind = createArrayItem(doc, 2);
    kind.appendChild(createInt32(doc, Words::Data, static_cast<int>(type)));
    array.appendChild(kind);
    return array;
}

template <>
QDomElement value2element<Stored::V14::Transform>(QDomDocument& doc, const QString& name,
                                                  const Stored::V14::Transform& transform, long long id) {
    QDomElement object = createObject(doc, name, QStringLiteral("Types::Transform"), id);
    for (const auto& field : Stored::V14::transformFields) {
        const double number = transform.*field.member;
        QDomElement e = doc.createElement(QString::fromLatin1(field.name));
        e.setAttribute(Words::type, QStringLiteral("double"));
        // Quirk: matrices have four decimals, all other doubles six significant digits.
        e.setAttribute(Words::value, QString::number(number, 'f', 4));
        e.setAttribute(Words::binaryData, serializeValue(number));
        object.appendChild(e);
    }
    return object;
}

} // namespace Archive
