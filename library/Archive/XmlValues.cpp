#include "Archive/Internal/Words.h"
#include "Archive/Xml.h"

#include <QtEndian>

#include <bit>
#include <cmath>

namespace Archive {

QString typeOf(const QDomElement& e) {
    return e.attribute(Words::type);
}

unsigned long long objectIdOf(const QDomElement& e) {
    return e.attribute(Words::objectId).toULongLong();
}

QString valueOf(const QDomElement& parent, const QString& name) {
    return parent.firstChildElement(name).attribute(Words::value);
}

QString refOf(const QDomElement& parent, const QString& name) {
    return parent.firstChildElement(name).attribute(Words::ref);
}

void setValueOf(const QDomElement& parent, const QString& name, const QString& value) {
    QDomElement child = parent.firstChildElement(name);
    if (child.isNull())
        return;
    child.setAttribute(Words::value, value);
}

long long extractValue(const QString& text, long long fallback) {
    bool isNumber = false;
    const long long number = text.toLongLong(&isNumber);
    return isNumber ? number : fallback;
}

MTime extractValue(const QString& text, MTime fallback) {
    return MTime(extractValue(text, fallback.count()));
}

double extractValue(const QString& text, double fallback) {
    const QByteArray bytes = QByteArray::fromBase64(text.toUtf8());
    // Quirk: too few bytes read as 0.0, not as the fallback.
    if (bytes.size() < static_cast<int>(sizeof(quint64)))
        return 0.0;
    const double number = std::bit_cast<double>(qFromBigEndian<quint64>(bytes.constData()));
    return std::isinf(number) ? fallback : number;
}

double readValue(const QDomElement& e, double fallback) {
    if (typeOf(e) != QLatin1String("double"))
        return fallback;
    return extractValue(e.attribute(Words::binaryData), fallback);
}

QString serializeValue(double value) {
    const double finite = std::isinf(value) ? 0.0 : value;
    QByteArray bytes(sizeof(quint64), Qt::Uninitialized);
    qToBigEndian(std::bit_cast<quint64>(finite), bytes.data());
    return QString::fromLatin1(bytes.toBase64());
}

void writeValue(QDomElement& e, double value) {
    e.setAttribute(Words::type, QStringLiteral("double"));
    e.setAttribute(Words::value, QString::number(value, 'g', 6));
    e.setAttribute(Words::binaryData, serializeValue(value));
}

} // namespace Archive
