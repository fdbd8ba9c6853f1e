#include "FS/FS.h"

#include <QDir>
#include <QFileInfo>

namespace FS {

QString absolutePath(const QString& path) {
    return QFileInfo(path).absolutePath();
}

QString absoluteFilePath(const QString& path) {
    return QFileInfo(path).absoluteFilePath();
}

QString toRelativePath(const QString& base, const QString& path) {
    return QDir(base).relativeFilePath(path);
}

QString fromRelativePath(const QString& base, const QString& path) {
    return QDir(base).absoluteFilePath(path);
}

bool isSubPath(const QString& root, const QString& path) {
    if (root.isEmpty() || path.isEmpty())
        return false;
    QString below = QDir::cleanPath(absoluteFilePath(root));
    if (!below.endsWith(QLatin1Char('/')))
        below += QLatin1Char('/');
    const QString cleaned = QDir::cleanPath(absoluteFilePath(path));
    return cleaned.startsWith(below) && cleaned.size() > below.size();
}

QString joinPath(const QStringList& parts, const QString& separator) {
    return parts.join(separator.isEmpty() ? QStringLiteral("/") : separator);
}

QString normalizedPath(const QString& path) {
    return QDir::cleanPath(path);
}

} // namespace FS
