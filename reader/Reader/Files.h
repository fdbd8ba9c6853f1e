#pragma once

#include <QByteArray>
#include <QString>

#include <sys/stat.h>

#include <array>

// Threads: all functions are thread-safe. If two threads write a file at once, it has the content of one of
// them.

namespace Reader {

/// The path that means standard input or standard output.
inline const QString standardStream = QStringLiteral("-");

/// In bytes. Larger files are refused: their tree would not fit into memory.
inline constexpr qint64 greatestFile = qint64(1) << 30;

/// Reads a whole file, or standard input. Throws Error.
QByteArray readFile(const QString& path);

/// Whether writing a file replaces an existing one or throws Error.
enum class Existing { Replace, Refuse };

/// Writes a whole file, or standard output. Writes a temporary file in the same folder, syncs and renames it,
/// so that after a crash there is either the old file or the new one. A device or a pipe is written directly.
/// Throws Error.
void writeFile(const QString& path, const QByteArray& bytes, Existing existing = Existing::Replace);

/// A file that is read, changed and written back. It is locked for as long as the object exists: a second
/// object for the same file is refused. Changes that others make to the file in the meantime are not
/// overwritten.
///
/// Threads: not thread-safe.
class FileInPlace {
public:
    /// Locks and reads the file. Throws Error, also if it is already locked.
    explicit FileInPlace(const QString& path);
    ~FileInPlace();
    FileInPlace(const FileInPlace&) = delete;
    FileInPlace& operator=(const FileInPlace&) = delete;

    const QByteArray& bytes() const { return m_bytes; }

    /// Saves the old content as `<path>.bak`, with a number if such a file exists, and writes the file.
    /// Returns the backup's path. If it throws Error, the file is unchanged and there is no new backup.
    QString replace(const QByteArray& bytes);

private:
    /// Identifies a state of a file: device, file number, size and time of change.
    using State = std::array<long long, 5>;

    static State stateOf(const struct stat& status);
    State stateOfPath() const;

    QString m_path;
    int m_descriptor;
    State m_state;
    QByteArray m_bytes;
};

} // namespace Reader
