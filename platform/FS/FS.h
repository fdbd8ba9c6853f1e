#pragma once

#include <QString>
#include <QStringList>

/// Path arithmetic. Nothing here opens a file; relative arguments count from the working directory.
///
/// A document may come from another system. A path with a drive ("C:/", "C:\") or a server ("//server",
/// "\\server") in front is "foreign": absolute on every system. In it "\" is a separator like "/", and it is
/// compared without case. The drive or the server is its root, and ".." does not lead above that.
namespace FS {

/// The absolute directory of `path`, without its last part. The directory of a root is the root.
QString absolutePath(const QString& path);

/// `path` made absolute, with its file name; a foreign one in its normal form.
QString absoluteFilePath(const QString& path);

/// `path` as seen from the directory `base`. Stays as it is where no relative path leads there: from one drive or
/// server to another, and between a foreign path and one that starts with "/".
QString toRelativePath(const QString& base, const QString& path);

/// `path` resolved against the directory `base`; an absolute path stays as it is.
QString fromRelativePath(const QString& base, const QString& path);

/// Whether `path` lies strictly below `root`, on cleaned absolute paths. Nothing lies below an empty root, and
/// an empty path lies nowhere. A foreign path lies only below a foreign root.
bool isSubPath(const QString& root, const QString& path);

/// The parts joined by `separator`; an empty separator means "/".
QString joinPath(const QStringList& parts, const QString& separator);

/// The path without ".", "..", repeated or trailing separators; a foreign one has "/" for "\", and "C:/" keeps
/// its slash.
QString normalizedPath(const QString& path);

} // namespace FS
