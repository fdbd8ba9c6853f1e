#pragma once

#include <QString>
#include <QStringList>

/// Path arithmetic. Nothing here opens a file; relative arguments count from the working directory.
namespace FS {

/// The absolute directory of `path`, without its last part.
QString absolutePath(const QString& path);

/// `path` made absolute, with its file name.
QString absoluteFilePath(const QString& path);

/// `path` as seen from the directory `base`.
QString toRelativePath(const QString& base, const QString& path);

/// `path` resolved against the directory `base`; an absolute path stays as it is.
QString fromRelativePath(const QString& base, const QString& path);

/// Whether `path` lies strictly below `root`, on cleaned absolute paths. Nothing lies below an empty root, and
/// an empty path lies nowhere.
bool isSubPath(const QString& root, const QString& path);

/// The parts joined by `separator`; an empty separator stands for "/".
QString joinPath(const QStringList& parts, const QString& separator);

/// The path without ".", "..", repeated or trailing separators.
QString normalizedPath(const QString& path);

} // namespace FS
