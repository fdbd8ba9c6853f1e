#pragma once

#include <QByteArray>
#include <QString>

namespace Reader {

/// What "-" stands for as a path: standard input or output.
inline const QString standardStream = QStringLiteral("-");

/// Reads a whole file. Throws Error.
QByteArray readFile(const QString& path);

/// Writes a whole file by way of a temporary file beside it, synced and renamed: whatever happens, the old file
/// stands or the new one. A device or a pipe is written into. Throws Error.
void writeFile(const QString& path, const QByteArray& bytes);

/// Keeps `bytes`, what the file held, as `<path>.bak`, or under a number where such a file stands already. Gives
/// the backup's path. Throws Error.
QString keepBackup(const QString& path, const QByteArray& bytes);

} // namespace Reader
