#include "Reader/Files.h"

#include "Reader/Error.h"

#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

namespace Reader {
namespace {

[[noreturn]] void fail(ErrorKind kind, const QString& path, const QString& reason = {}) {
    throw Error(kind, {.file = path, .reason = reason.toStdString()});
}

QString systemError() {
    return qt_error_string(errno);
}

std::optional<struct stat> statusOf(const QString& path) {
    struct stat status = {};
    return stat(QFile::encodeName(path).constData(), &status) == 0 ? std::optional(status) : std::nullopt;
}

/// The same, of a link itself.
std::optional<struct stat> linkStatusOf(const QString& path) {
    struct stat status = {};
    return lstat(QFile::encodeName(path).constData(), &status) == 0 ? std::optional(status) : std::nullopt;
}

WriteObstacle obstacleTo(const QString& path, int error) {
    const QFileInfo folder(QFileInfo(path).absolutePath());
    if (!folder.isDir())
        return WriteObstacle::NoFolder;
    if (QFileInfo(path).isDir())
        return WriteObstacle::IsFolder;
    if (error == ENOSPC || error == EDQUOT || error == EFBIG)
        return WriteObstacle::NoSpace;
    if (!folder.isWritable() || (QFileInfo::exists(path) && !QFileInfo(path).isWritable()))
        return WriteObstacle::NotPermitted;
    return WriteObstacle::None;
}

constexpr int mostLinks = 40; // as the system itself follows

QString targetOf(const QString& link) {
    return QFileInfo(link).symLinkTarget();
}

/// The descriptor of this process that "/dev/stdout", "/dev/fd/N" and the like lead to.
std::optional<int> ownDescriptor(QString path) {
    const QString descriptors = QFileInfo(QStringLiteral("/proc/self/fd")).canonicalFilePath();
    for (int count = 0; count < mostLinks; ++count) {
        const QFileInfo file(path);
        bool isNumber = false;
        const int number = file.fileName().toInt(&isNumber);
        if (isNumber && !descriptors.isEmpty() && QFileInfo(file.path()).canonicalFilePath() == descriptors)
            return number;
        if (!file.isSymLink())
            break;
        path = targetOf(path);
    }
    return std::nullopt;
}

/// A device or a pipe takes the bytes itself: a rename would put a file in its place.
void writeInto(const QString& path, const QByteArray& bytes) {
    // A descriptor is written to as it is: where it was opened to append, and whether it is a socket.
    const auto own = path == standardStream ? std::optional(STDOUT_FILENO) : ownDescriptor(path);
    const QString name = path == standardStream ? QStringLiteral("standard output") : path;
    if (own == STDOUT_FILENO)
        std::fflush(stdout);
    const int descriptor = own ? *own : open(QFile::encodeName(path).constData(), O_WRONLY | O_CLOEXEC);
    if (descriptor < 0)
        failToWrite(name);
    const bool isWritten = writeAll(descriptor, bytes);
    const int error = errno;
    const bool isClosed = own || close(descriptor) == 0;
    if (!isWritten)
        errno = error;
    if (!isWritten || !isClosed)
        failToWrite(name);
}

/// Part of a sentence.
std::string kindOf(const struct stat& status) {
    return S_ISLNK(status.st_mode)    ? "a link has this name"
           : S_ISFIFO(status.st_mode) ? "a pipe has this name"
           : S_ISSOCK(status.st_mode) ? "a socket has this name"
           : S_ISDIR(status.st_mode)  ? "a folder has this name"
                                      : "a device has this name";
}

/// Gives a backup, of which `path` is the first name, a name that is free, and that name. An earlier backup is never
/// written over.
QString placeBackup(TemporaryFile& file, const QString& path) {
    for (int number = 1;; ++number) {
        QString name = number == 1 ? path : path + QString::number(number);
        if (file.takeFreePlace(QFile::encodeName(name)))
            return name;
        if (errno != EEXIST)
            failToWrite(name);
    }
}

} // namespace

QString targetOfLinks(QString path) {
    for (int count = 0; count < mostLinks && QFileInfo(path).isSymLink(); ++count)
        path = targetOf(path);
    return path;
}

void syncFolder(const QString& path) {
    const QByteArray folder = QFile::encodeName(QFileInfo(path).absolutePath());
    const int descriptor = open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return; // the file is whole either way; only its name could come late
    fsync(descriptor);
    close(descriptor);
}

void failToWrite(const QString& path) {
    const int error = errno;
    throw Error(
        ErrorKind::Unwritable,
        {.file = path, .reason = qt_error_string(error).toStdString(), .obstacle = obstacleTo(path, error)});
}

bool isStream(const QString& path) {
    if (path == standardStream || ownDescriptor(path))
        return true;
    const auto status = statusOf(path);
    return status && !S_ISREG(status->st_mode) && !S_ISDIR(status->st_mode);
}

bool isStandardOutput(const QString& path) {
    return path == standardStream || ownDescriptor(path) == STDOUT_FILENO;
}

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

std::optional<mode_t> permissionsOf(const QString& path) {
    struct stat status = {};
    const bool isThere = path == standardStream ? fstat(STDIN_FILENO, &status) == 0
                                                : stat(QFile::encodeName(path).constData(), &status) == 0;
    return isThere && S_ISREG(status.st_mode) ? std::optional(status.st_mode & 0777) : std::nullopt;
}

void checkTarget(const QString& path, const WriteOptions& options) {
    if (path == standardStream)
        return;
    const auto status = linkStatusOf(path);
    if (status && options.onlyRegularFiles && !S_ISREG(status->st_mode))
        throw Error(ErrorKind::Unwritable,
                    {.file = path, .reason = kindOf(*status), .obstacle = WriteObstacle::NotRegular});
    if (isStream(path))
        return;
    if (!QFileInfo(QFileInfo(path).absolutePath()).isDir())
        throw Error(ErrorKind::Unwritable, {.file = path,
                                            .reason = qt_error_string(ENOENT).toStdString(),
                                            .obstacle = WriteObstacle::NoFolder});
    if (QFileInfo(path).isDir())
        throw Error(ErrorKind::Unwritable, {.file = path,
                                            .reason = qt_error_string(EISDIR).toStdString(),
                                            .obstacle = WriteObstacle::IsFolder});
    if (status && options.existing == Existing::Refuse)
        fail(ErrorKind::OutputExists, path);
}

PendingFile::PendingFile(const QString& path, const QByteArray& bytes, const WriteOptions& options)
    : m_path(path), m_options(options) {
    checkTarget(path, options);
    if (isStream(path)) {
        m_streamBytes = bytes;
        return;
    }
    const auto [existing, permissions, onlyRegularFiles] = options;
    m_target = QFile::encodeName(onlyRegularFiles ? path : targetOfLinks(path));
    const auto status = statusOf(path);
    if (status && access(m_target.constData(), W_OK) != 0)
        failToWrite(path);
    using Access = TemporaryFile::Access;
    m_temporary =
        std::make_unique<TemporaryFile>(m_target, status || permissions ? Access::Owner : Access::Anyone);
    if (status)
        m_temporary->takeAttributesOf(m_target, *status, permissions.value_or(07777));
    else if (permissions)
        m_temporary->setPermissions(*permissions);
    if (!m_temporary->write(bytes) || !m_temporary->close())
        failToWrite(path);
}

void PendingFile::commit() {
    if (!m_temporary) {
        writeInto(m_path, m_streamBytes);
        return;
    }
    if (m_options.existing == Existing::Replace) {
        if (!m_temporary->replace(m_target))
            failToWrite(m_path);
    } else if (!m_temporary->takeFreePlace(m_target)) {
        if (errno == EEXIST)
            fail(ErrorKind::OutputExists, m_path);
        failToWrite(m_path);
    }
    m_temporary.reset();
    syncFolder(QFile::decodeName(m_target));
}

void writeFile(const QString& path, const QByteArray& bytes, const WriteOptions& options) {
    PendingFile(path, bytes, options).commit();
}

FileInPlace::FileInPlace(const QString& path)
    : m_path(path), m_target(targetOfLinks(path)),
      m_descriptor(open(QFile::encodeName(m_target).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
    if (m_descriptor < 0 || fstat(m_descriptor, &m_status) != 0)
        fail(ErrorKind::Unreadable, path, systemError());
    try {
        if (!S_ISREG(m_status.st_mode))
            fail(ErrorKind::NoRegularFile, path);
        // Where the file system knows no locks, the check before writing is what there is.
        const bool isTaken = flock(m_descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
        if (isTaken || stateOf(m_status) != stateOfTarget())
            fail(ErrorKind::InUse, path);
        m_bytes = readFile(m_target);
    } catch (const Error&) {
        close(m_descriptor);
        throw;
    }
}

FileInPlace::~FileInPlace() {
    close(m_descriptor);
}

Replacement FileInPlace::replace(const QByteArray& bytes) {
    refuseChanges();
    const QByteArray target = QFile::encodeName(m_target);
    const QString backupName = m_target + QStringLiteral(".bak");
    TemporaryFile backup(QFile::encodeName(backupName), TemporaryFile::Access::Owner);
    backup.takeAttributesOf(target, m_status);
    if (!backup.write(m_bytes) || !backup.takeTimesOf(m_status) || !backup.close())
        failToWrite(backupName);
    if (access(target.constData(), W_OK) != 0)
        failToWrite(m_target);
    TemporaryFile result(target, TemporaryFile::Access::Owner);
    result.takeAttributesOf(target, m_status);
    if (!result.write(bytes) || !result.close())
        failToWrite(m_target);

    Replacement done{m_target, {}, m_target != m_path, static_cast<qint64>(m_status.st_nlink) - 1};
    const HeldSignals held;
    refuseChanges();
    done.backup = placeBackup(backup, backupName);
    Unfinished placed(QFile::encodeName(done.backup), Unfinished::Kind::File);
    if (!result.replace(target))
        failToWrite(m_target);
    placed.keep();
    syncFolder(m_target);
    return done;
}

void FileInPlace::refuseChanges() const {
    if (stateOf(m_status) != stateOfTarget())
        fail(ErrorKind::ChangedMeanwhile, m_path);
}

FileInPlace::State FileInPlace::stateOf(const struct stat& status) {
    return {static_cast<long long>(status.st_dev), static_cast<long long>(status.st_ino),
            static_cast<long long>(status.st_size), static_cast<long long>(status.st_mtim.tv_sec),
            static_cast<long long>(status.st_mtim.tv_nsec)};
}

FileInPlace::State FileInPlace::stateOfTarget() const {
    const auto status = statusOf(m_target);
    return status ? stateOf(*status) : State();
}

} // namespace Reader
