#include "FS/FS.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <optional>

namespace FS {
namespace {

bool isSeparator(QChar c) {
    return c == QLatin1Char('/') || c == QLatin1Char('\\');
}

bool isDriveLetter(QChar c) {
    return (c >= QLatin1Char('A') && c <= QLatin1Char('Z')) ||
           (c >= QLatin1Char('a') && c <= QLatin1Char('z'));
}

bool hasDrive(const QString& path) {
    return path.size() >= 3 && isDriveLetter(path[0]) && path[1] == QLatin1Char(':') && isSeparator(path[2]);
}

bool hasServer(const QString& path) {
    return path.startsWith(QLatin1String("//")) || path.startsWith(QLatin1String("\\\\"));
}

bool isForeign(const QString& path) {
    return hasDrive(path) || hasServer(path);
}

QString withSlashes(QString path) {
    return path.replace(QLatin1Char('\\'), QLatin1Char('/'));
}

bool isSameName(const QString& one, const QString& other) {
    return one.compare(other, Qt::CaseInsensitive) == 0;
}

/// A foreign path, cleaned.
struct ForeignPath {
    QString root;      ///< "C:", or "//" and the server's name
    QStringList names; ///< what follows the root, without ".", ".." and empty names
};

ForeignPath splitForeign(const QString& foreignPath) {
    const QString path = withSlashes(foreignPath);
    const int slash = path.indexOf(QLatin1Char('/'), 2); // the first behind "C:" or "//"
    const int rootEnd = slash < 0 ? path.size() : slash;
    ForeignPath result{path.left(rootEnd), {}};
    for (const QString& name : path.mid(rootEnd).split(QLatin1Char('/'), Qt::SkipEmptyParts)) {
        if (name == QLatin1String("..")) {
            if (!result.names.isEmpty())
                result.names.removeLast();
        } else if (name != QLatin1String(".")) {
            result.names.append(name);
        }
    }
    return result;
}

std::optional<ForeignPath> foreign(const QString& path) {
    return isForeign(path) ? std::optional(splitForeign(path)) : std::nullopt;
}

QString joined(const ForeignPath& path) {
    // "C:" alone is the working directory of that drive.
    if (path.names.isEmpty() && !hasServer(path.root))
        return path.root + QLatin1Char('/');
    return (QStringList(path.root) + path.names).join(QLatin1Char('/'));
}

/// How many of the first names are the same.
int commonNames(const ForeignPath& one, const ForeignPath& other) {
    const auto end =
        std::mismatch(one.names.begin(), one.names.end(), other.names.begin(), other.names.end(), isSameName);
    return static_cast<int>(end.first - one.names.begin());
}

/// `path` as seen from the directory `base`, both below the same root.
QString relative(const ForeignPath& base, const ForeignPath& path) {
    const int common = commonNames(base, path);
    QStringList names;
    for (int up = common; up < base.names.size(); ++up)
        names.append(QStringLiteral(".."));
    names += path.names.mid(common);
    return names.isEmpty() ? QStringLiteral(".") : names.join(QLatin1Char('/'));
}

} // namespace

QString absolutePath(const QString& path) {
    auto directory = foreign(path);
    if (!directory)
        return QFileInfo(path).absolutePath();
    if (!directory->names.isEmpty())
        directory->names.removeLast();
    return joined(*directory);
}

QString absoluteFilePath(const QString& path) {
    return isForeign(path) ? normalizedPath(path) : QFileInfo(path).absoluteFilePath();
}

QString toRelativePath(const QString& base, const QString& path) {
    const auto from = foreign(base);
    const auto to = foreign(path);
    if (from && to)
        return isSameName(from->root, to->root) ? relative(*from, *to) : path;
    if (to || (from && QDir::isAbsolutePath(path)))
        return path;
    return from ? QDir::cleanPath(path) : QDir(base).relativeFilePath(path);
}

QString fromRelativePath(const QString& base, const QString& path) {
    if (isForeign(path))
        return path;
    if (!isForeign(base))
        return QDir(base).absoluteFilePath(path);
    if (QDir::isAbsolutePath(path))
        return path;
    const QString folder = withSlashes(base);
    return folder.endsWith(QLatin1Char('/')) ? folder + path : folder + QLatin1Char('/') + path;
}

bool isSubPath(const QString& root, const QString& path) {
    if (root.isEmpty() || path.isEmpty())
        return false;
    const auto above = foreign(root);
    const auto under = foreign(path);
    if (above && under)
        return isSameName(above->root, under->root) && above->names.size() < under->names.size() &&
               commonNames(*above, *under) == above->names.size();
    if (above || under)
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
    const auto split = foreign(path);
    return split ? joined(*split) : QDir::cleanPath(path);
}

} // namespace FS
