#include "Reader/Files.h"

#include "Reader/Error.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <utility>

namespace Reader {
namespace {

[[noreturn]] void fail(ErrorKind kind, const QString& path, const QString& reason = {}) {
    throw Error(kind, {.file = path, .reason = reason.toStdString()});
}

/// Syncs the folder of a file. A rename is durable only after that.
void syncFolder(const QString& path) {
    const QByteArray folder = QFile::encodeName(QFileInfo(path).absolutePath());
    const int descriptor = open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return; // the content is safe; only the new name may be lost in a crash
    fsync(descriptor);
    close(descriptor);
}

void writeStandardOutput(const QByteArray& bytes) {
    QFile out;
    if (!out.open(stdout, QIODevice::WriteOnly) || out.write(bytes) != bytes.size() || !out.flush())
        fail(ErrorKind::Unwritable, QStringLiteral("standard output"), out.errorString());
}

WriteObstacle obstacleTo(const QString& path) {
    const QFileInfo folder(QFileInfo(path).absolutePath());
    if (!folder.isDir())
        return WriteObstacle::NoFolder;
    if (QFileInfo(path).isDir())
        return WriteObstacle::IsFolder;
    if (!folder.isWritable() || (QFileInfo::exists(path) && !QFileInfo(path).isWritable()))
        return WriteObstacle::NotPermitted;
    return WriteObstacle::None;
}

[[noreturn]] void failToWrite(const QString& path, const QString& reason) {
    throw Error(ErrorKind::Unwritable,
                {.file = path, .reason = reason.toStdString(), .obstacle = obstacleTo(path)});
}

/// Writes into a device or a pipe. A rename would replace it by a file.
void writeInto(const QString& path, const QByteArray& bytes) {
    QFile out(path);
    if (!out.open(QIODevice::WriteOnly | QIODevice::Unbuffered) || out.write(bytes) != bytes.size())
        failToWrite(path, out.errorString());
}

QString systemError() {
    return qt_error_string(errno);
}

/// A temporary file in the folder of another one. The destructor removes it unless it has replaced the other
/// one.
class Temporary {
public:
    explicit Temporary(const QByteArray& path) : m_path(path) {
        for (int number = 1; m_descriptor < 0 && (number == 1 || errno == EEXIST); ++number) {
            m_name = path + '.' + QByteArray::number(getpid()) + '-' + QByteArray::number(number) + ".tmp";
            m_descriptor = open(m_name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        }
        m_exists = m_descriptor >= 0;
    }
    ~Temporary() {
        if (m_descriptor >= 0)
            close(m_descriptor);
        if (m_exists)
            unlink(m_name.constData());
    }
    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;

    /// Writes all bytes, syncs and closes. Returns false with `errno` set on failure: each call may find the
    /// disk full.
    bool write(const QByteArray& bytes) {
        if (m_descriptor < 0 || !writeAll(bytes) || fsync(m_descriptor) != 0)
            return false;
        return close(std::exchange(m_descriptor, -1)) == 0;
    }
    bool takePermissionsOf(const struct stat& status) const {
        return m_descriptor >= 0 && fchmod(m_descriptor, status.st_mode & 07777) == 0;
    }
    bool replace() { return settle(rename(m_name.constData(), m_path.constData()) == 0); }
    /// Renames the file only if the target does not exist. A separate check would be a race with other
    /// processes.
    bool moveToFreePath() {
        if (renameat2(AT_FDCWD, m_name.constData(), AT_FDCWD, m_path.constData(), RENAME_NOREPLACE) == 0)
            return settle(true);
        // For file systems without that kind of rename: a hard link also fails if the target exists.
        return errno == EINVAL && link(m_name.constData(), m_path.constData()) == 0;
    }

private:
    bool writeAll(const QByteArray& bytes) const {
        for (qint64 done = 0; done < bytes.size();) {
            const ssize_t count = ::write(m_descriptor, bytes.constData() + done,
                                          static_cast<std::size_t>(bytes.size() - done));
            if (count < 0 && errno != EINTR)
                return false;
            done += std::max<ssize_t>(count, 0);
        }
        return true;
    }
    bool settle(bool isDone) {
        m_exists = !isDone;
        return isDone;
    }

    QByteArray m_path;
    QByteArray m_name;
    int m_descriptor = -1;
    bool m_exists = false;
};

/// The target of a chain of symbolic links. It need not exist.
QString resolved(QString path) {
    constexpr int mostLinks = 40;
    for (int count = 0; count < mostLinks && QFileInfo(path).isSymLink(); ++count)
        path = QFileInfo(path).symLinkTarget();
    return path;
}

void writeOver(const QString& path, const QByteArray& bytes) {
    const QByteArray target = QFile::encodeName(resolved(path));
    struct stat status = {};
    const bool exists = stat(target.constData(), &status) == 0;
    if (exists && access(target.constData(), W_OK) != 0)
        failToWrite(path, systemError());
    Temporary temporary(target);
    if (exists && S_ISREG(status.st_mode))
        temporary.takePermissionsOf(status);
    if (!temporary.write(bytes) || !temporary.replace())
        failToWrite(path, systemError());
}

void writeWhereNothingIs(const QString& path, const QByteArray& bytes) {
    Temporary temporary(QFile::encodeName(path));
    if (temporary.write(bytes) && temporary.moveToFreePath())
        return;
    if (errno == EEXIST)
        fail(ErrorKind::OutputExists, path);
    failToWrite(path, systemError());
}

/// Writes `bytes`, the old content, to a backup file in the same folder. Never replaces an earlier backup.
QString keepBackup(const QString& path, const QByteArray& bytes) {
    for (int number = 1;; ++number) {
        QString backup = path + QStringLiteral(".bak") + (number == 1 ? QString() : QString::number(number));
        if (QFileInfo(backup).isSymLink() || QFileInfo::exists(backup))
            continue;
        try {
            writeFile(backup, bytes, Existing::Refuse);
            return backup;
        } catch (const Error& error) {
            if (error.kind() != ErrorKind::OutputExists)
                throw;
        }
    }
}

} // namespace

QByteArray readFile(const QString& path) {
    QFile file(path);
    const bool isOpen =
        path == standardStream ? file.open(stdin, QIODevice::ReadOnly) : file.open(QIODevice::ReadOnly);
    const QString name = path == standardStream ? QStringLiteral("standard input") : path;
    if (!isOpen)
        fail(ErrorKind::Unreadable, name, file.errorString());
    constexpr qint64 piece = 1 << 20;
    QByteArray bytes;
    bytes.reserve(static_cast<int>(std::min(file.size(), greatestFile)));
    for (QByteArray next = file.read(piece); !next.isEmpty() && bytes.size() <= greatestFile;
         next = file.read(piece))
        bytes += next;
    if (bytes.size() > greatestFile)
        fail(ErrorKind::TooLarge, name);
    if (file.error() != QFileDevice::NoError)
        fail(ErrorKind::Unreadable, name, file.errorString());
    return bytes;
}

void writeFile(const QString& path, const QByteArray& bytes, Existing existing) {
    if (path == standardStream) {
        writeStandardOutput(bytes);
        return;
    }
    const QFileInfo target(path);
    if (target.exists() && !target.isFile() && !target.isDir()) {
        writeInto(path, bytes);
        return;
    }
    if (existing == Existing::Refuse)
        writeWhereNothingIs(path, bytes);
    else
        writeOver(path, bytes);
    syncFolder(path);
}

FileInPlace::FileInPlace(const QString& path)
    : m_path(path),
      m_descriptor(open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)), m_state() {
    struct stat status = {};
    if (m_descriptor < 0 || fstat(m_descriptor, &status) != 0)
        fail(ErrorKind::Unreadable, path, systemError());
    m_state = stateOf(status);
    try {
        if (!S_ISREG(status.st_mode))
            fail(ErrorKind::NoRegularFile, path);
        // If the file system has no locks, only the check before writing protects the file.
        const bool isTaken = flock(m_descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
        if (isTaken || m_state != stateOfPath())
            fail(ErrorKind::InUse, path);
        m_bytes = readFile(path);
    } catch (const Error&) {
        close(m_descriptor);
        throw;
    }
}

FileInPlace::~FileInPlace() {
    close(m_descriptor);
}

QString FileInPlace::replace(const QByteArray& bytes) {
    QString backup = keepBackup(m_path, m_bytes);
    try {
        if (m_state != stateOfPath())
            fail(ErrorKind::ChangedMeanwhile, m_path);
        writeFile(m_path, bytes);
    } catch (const Error&) {
        QFile::remove(backup);
        throw;
    }
    return backup;
}

FileInPlace::State FileInPlace::stateOf(const struct stat& status) {
    return {static_cast<long long>(status.st_dev), static_cast<long long>(status.st_ino),
            static_cast<long long>(status.st_size), static_cast<long long>(status.st_mtim.tv_sec),
            static_cast<long long>(status.st_mtim.tv_nsec)};
}

FileInPlace::State FileInPlace::stateOfPath() const {
    struct stat status = {};
    return stat(QFile::encodeName(m_path).constData(), &status) == 0 ? stateOf(status) : State();
}

} // namespace Reader
