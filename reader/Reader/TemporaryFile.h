#pragma once

#include "Reader/Unfinished.h"

#include <QByteArray>

#include <sys/stat.h>

#include <optional>

namespace Reader {

/// A file beside another one, whose place it takes when it is complete. It goes again unless it does. All that can fail
/// says so with false and `errno`.
///
/// Threads: one object belongs to one thread at a time.
class TemporaryFile {
public:
    /// Who may read it before it has its permissions.
    enum class Access { Owner, Anyone };

    /// `path` is the name that the file is to have in the end.
    TemporaryFile(const QByteArray& path, Access access);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    void setPermissions(mode_t permissions);
    /// Takes owner, permissions and extended attributes (access control lists are some of them) of a file over, as far
    /// as this user and the file system allow, and no more permissions than `most`.
    void takeAttributesOf(const QByteArray& path, const struct stat& status, mode_t most = 07777);
    /// Writes and syncs all. A disk may be found full at any of these calls.
    bool write(const QByteArray& bytes);
    /// The times of the last access and change of a file, to the nanosecond. Not before write().
    bool takeTimesOf(const struct stat& status);
    bool close();

    /// Takes the place of what is at `path`.
    bool replace(const QByteArray& path);
    /// Takes the place at `path` only where nothing is; otherwise `errno` is EEXIST. A check before that would leave
    /// time for another process.
    bool takeFreePlace(const QByteArray& path);

private:
    bool replaceEmptyFile(const QByteArray& path);
    bool renameTo(const QByteArray& path);

    QByteArray m_name;
    int m_descriptor = -1;
    std::optional<Unfinished> m_unfinished; ///< none where the file could not be made
};

/// Writes all; false with `errno`.
bool writeAll(int descriptor, const QByteArray& bytes);

} // namespace Reader
