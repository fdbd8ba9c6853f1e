#pragma once

#include <QByteArray>
#include <QString>

#include <sys/stat.h>

#include <array>

// Threads: every function here may be called from any thread at any time. A file that two threads write at once has
// the content of one of them.

namespace Reader {

/// As a path: standard input or output.
inline const QString standardStream = QStringLiteral("-");

/// Files larger than this are refused; a tree of one would fill any machine.
inline constexpr qint64 greatestFile = qint64(1) << 30;

/// Reads a whole file. Throws Error.
QByteArray readFile(const QString& path);

/// What happens to a file that exists where one is to be written.
enum class Existing { Replace, Refuse };

/// Writes a whole file by way of a temporary file beside it, synced and renamed: whatever happens, the old file is
/// there or the new one. A device or a pipe is written into. Throws Error.
void writeFile(const QString& path, const QByteArray& bytes, Existing existing = Existing::Replace);

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
    /// Gives the backup's path. Throws Error; the file is as it was then, and no backup is left behind.
    QString replace(const QByteArray& bytes);

private:
    /// Differs between any two states of a file: device, file number, size and time of change.
    using State = std::array<long long, 5>;

    static State stateOf(const struct stat& status);
    State stateOfPath() const;

    QString m_path;
    int m_descriptor;
    State m_state;
    QByteArray m_bytes;
};

} // namespace Reader
