#pragma once

#include "Reader/TemporaryFile.h"

#include <QByteArray>
#include <QString>

#include <sys/stat.h>

#include <array>
#include <memory>
#include <optional>

// Threads: every function here may be called from any thread at any time. A file that two threads write at once has
// the content of one of them.

namespace Reader {

/// As a path: standard input or output.
inline const QString standardStream = QStringLiteral("-");

/// Files larger than this are refused; a tree of one would fill any machine.
inline constexpr qint64 greatestFile = qint64(1) << 30;

/// Whether bytes go into what has this name and never replace it: standard output, a device, a pipe, or a descriptor
/// that this process has open ("/dev/stdout").
bool isStream(const QString& path);

/// Whether that is standard output, also under a name of the system's.
bool isStandardOutput(const QString& path);

/// Where a link leads in the end, whether that is there or not; of anything else its own path.
QString targetOfLinks(QString path);

/// Makes the names in the folder of this file safe on the disk: a renamed file is safe only then.
void syncFolder(const QString& path);

/// Throws the Error for a file that could not be written; `errno` says why.
[[noreturn]] void failToWrite(const QString& path);

/// Reads a whole file. Throws Error.
QByteArray readFile(const QString& path);

/// The permissions of a regular file; none where there is no such. For standard input those of what it is.
std::optional<mode_t> permissionsOf(const QString& path);

/// What happens to a file that exists where one is to be written.
enum class Existing { Replace, Refuse };

struct WriteOptions {
    Existing existing = Existing::Replace;
    /// Those of the file that the content comes from. A new file gets them, and one that is replaced keeps those of its
    /// own that are among them; none leaves them to the process.
    std::optional<mode_t> permissions = {};
    /// Refuses anything but a regular file: for names that the user has not written out, where a link, a pipe or a
    /// device is a trap. Otherwise links are followed, and pipes and devices written into.
    bool onlyRegularFiles = false;
};

/// Throws the Error that a write would end with, as far as that is known before.
void checkTarget(const QString& path, const WriteOptions& options);

/// A file that is written and not yet in its place: the bytes are in a temporary file beside it, synced. Whatever
/// happens, the old file is there or the new one. A stream gets its bytes with commit().
///
/// Threads: one object belongs to one thread at a time.
class PendingFile {
public:
    /// Throws Error.
    PendingFile(const QString& path, const QByteArray& bytes, const WriteOptions& options = {});

    /// Puts the file in its place. Throws Error.
    void commit();

private:
    QString m_path;
    WriteOptions m_options;
    QByteArray m_streamBytes;
    QByteArray m_target;                        ///< where m_path leads
    std::unique_ptr<TemporaryFile> m_temporary; ///< none for a stream
};

/// Writes a whole file, as PendingFile does. Throws Error.
void writeFile(const QString& path, const QByteArray& bytes, const WriteOptions& options = {});

/// What FileInPlace::replace() did.
struct Replacement {
    QString target;        ///< the file that was replaced: where a link leads, else the path itself
    QString backup;        ///< beside the target
    bool isLinked = false; ///< the path is a symbolic link, which stays
    qint64 otherNames = 0; ///< hard links of the file, which keep the old content
};

/// A file that is read, changed and written back. While one lives, a second of the same file is refused, and what
/// others did to the file in the meantime is not written over.
///
/// Threads: one object belongs to one thread at a time.
class FileInPlace {
public:
    /// Throws Error where another run has the file.
    explicit FileInPlace(const QString& path);
    ~FileInPlace();
    FileInPlace(const FileInPlace&) = delete;
    FileInPlace& operator=(const FileInPlace&) = delete;

    const QByteArray& bytes() const { return m_bytes; }

    /// Writes the file and keeps what it was as `<path>.bak`, or under a number where such a file exists already.
    /// Both have the file's owner, permissions and extended attributes, the backup its times too. Throws Error; the
    /// file is as it was then, and no backup is left behind.
    Replacement replace(const QByteArray& bytes);

private:
    /// Differs between any two states of a file: device, file number, size and time of change.
    using State = std::array<long long, 5>;

    static State stateOf(const struct stat& status);
    State stateOfTarget() const;
    void refuseChanges() const;

    QString m_path;
    QString m_target; ///< where m_path leads
    int m_descriptor;
    struct stat m_status = {}; ///< before it was read
    QByteArray m_bytes;
};

} // namespace Reader
