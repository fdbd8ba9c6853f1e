#pragma once

#include <QString>
#include <QStringList>

/// Operations on paths as texts. They read no files. Relative arguments are relative to the working
/// directory.
namespace FS {

/// The absolute path of the directory that contains `path`.
QString absolutePath(const QString& path);

/// The absolute path of `path` itself.
QString absoluteFilePath(const QString& path);

/// `path` relative to the directory `base`.
QString toRelativePath(const QString& base, const QString& path);

/// `path` resolved against the directory `base`; an absolute path stays as it is.
QString fromRelativePath(const QString& base, const QString& path);

/// Whether `path` is strictly below the directory `root`; both are made absolute and cleaned first. False if
/// one of them is empty.
bool isSubPath(const QString& root, const QString& path);

/// The parts joined by `separator`; an empty separator means "/".
QString joinPath(const QStringList& parts, const QString& separator);

/// The path without ".", "..", repeated or trailing separators.
QString normalizedPath(const QString& path);

} // namespace FS
