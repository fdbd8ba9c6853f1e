#pragma once

#include <QString>
#include <QStringList>

/// The editor's functions for paths.
namespace FS {

inline int calls = 0; ///< of all functions

QString absolutePath(const QString& path);
QString absoluteFilePath(const QString& path);
QString toRelativePath(const QString& base, const QString& path);
QString fromRelativePath(const QString& base, const QString& path);
bool isSubPath(const QString& root, const QString& path);
QString joinPath(const QStringList& parts, const QString& separator);
QString normalizedPath(const QString& path);

} // namespace FS
