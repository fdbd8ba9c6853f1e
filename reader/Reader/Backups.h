#pragma once

#include <QDateTime>
#include <QString>

#include <optional>
#include <vector>

// Threads: as Files.h.

namespace Reader {

/// A file that keeps what another one was: `<name>.bak`, `<name>.bak2` and so on, beside it.
struct Backup {
    QString path;
    qint64 size = 0;      ///< bytes
    QDateTime made = {};  ///< when the backup was made
    QDateTime saved = {}; ///< when its content was saved last, before it became a backup
};

/// The backups of a file, the newest first. A link's backups are those of the file that it leads to.
std::vector<Backup> backupsOf(const QString& path);

/// What restore() did.
struct Restored {
    QString target; ///< the file that has the backup's content now: where a link leads, else the path itself
    QString kept;   ///< where the content is that the file had before; empty if there was no file
};

/// Gives a file the content, permissions and times of its backup in one move: at each moment the old file is there or
/// the new one. What the file was takes the backup's name. Throws Error.
Restored restore(const QString& path, const Backup& backup);

} // namespace Reader
