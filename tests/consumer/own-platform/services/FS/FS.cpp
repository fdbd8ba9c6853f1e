#include "FS/FS.h"

#include <QDir>
#include <QFileInfo>

namespace FS {

QString absolutePath(const QString& path) {
    ++calls;
    return QFileInfo(path).absolutePath();
}

QString absoluteFilePath(const QString& path) {
    ++calls;
    return QFileInfo(path).absoluteFilePath();
}

QString toRelativePath(const QString& base, const QString& path) {
    ++calls;
    return QDir(base).relativeFilePath(path);
}

QString fromRelativePath(const QString& base, const QString& path) {
    ++calls;
    return QDir::cleanPath(QDir(base).absoluteFilePath(path));
}

bool isSubPath(const QString& root, const QString& path) {
    ++calls;
    return !root.isEmpty() && QDir::cleanPath(path).startsWith(QDir::cleanPath(root) + '/');
}

QString joinPath(const QStringList& parts, const QString& separator) {
    ++calls;
    return parts.join(separator.isEmpty() ? QString('/') : separator);
}

QString normalizedPath(const QString& path) {
    ++calls;
    return QDir::cleanPath(path);
}

} // namespace FS
