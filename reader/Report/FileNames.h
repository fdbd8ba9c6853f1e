#pragma once

#include <QString>

#include <string>

/// Names of files. For the system they are bytes, in UTF-8 by custom only; Qt holds them as text.
namespace Reader::FileNames {

/// From here on Qt keeps every name as it is, whatever the locale: a byte that is no UTF-8 becomes the lone surrogate
/// U+DC00 + byte, which no UTF-8 text has, and that byte again where the name goes back to the system.
void keepAllBytes();

/// What keepAllBytes() makes Qt do.
QString decode(const QByteArray& name);
QByteArray encode(const QString& name);

/// The bytes of a name for messages, which may be no UTF-8.
inline std::string bytesOf(const QString& name) {
    return encode(name).toStdString();
}

} // namespace Reader::FileNames
