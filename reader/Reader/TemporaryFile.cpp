#include "Reader/TemporaryFile.h"

#include <QList>

#include <fcntl.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <utility>

namespace Reader {
namespace {

std::size_t sizeOf(const QByteArray& bytes) {
    return static_cast<std::size_t>(bytes.size());
}

/// What a call that fills a buffer gives; nothing where it fails, also because the size changed between two calls.
template <class Call>
std::optional<QByteArray> filledBy(Call call) {
    const ssize_t size = call(nullptr, 0);
    if (size < 0)
        return std::nullopt;
    QByteArray bytes(static_cast<int>(size), '\0');
    const ssize_t count = size == 0 ? 0 : call(bytes.data(), sizeOf(bytes));
    if (count < 0)
        return std::nullopt;
    return bytes.left(static_cast<int>(count));
}

/// As many as this user and the file system allow.
void copyExtendedAttributes(const QByteArray& path, int descriptor) {
    const auto names =
        filledBy([&](char* buffer, std::size_t size) { return listxattr(path.constData(), buffer, size); });
    for (const QByteArray& name : names.value_or(QByteArray()).split('\0')) {
        const auto value = filledBy([&](char* buffer, std::size_t size) {
            return name.isEmpty() ? -1 : getxattr(path.constData(), name.constData(), buffer, size);
        });
        if (value)
            fsetxattr(descriptor, name.constData(), value->constData(), sizeOf(*value), 0);
    }
}

} // namespace

TemporaryFile::TemporaryFile(const QByteArray& path, Access access) {
    const HeldSignals held;
    for (int number = 1; m_descriptor < 0 && (number == 1 || errno == EEXIST); ++number) {
        m_name = path + '.' + QByteArray::number(getpid()) + '-' + QByteArray::number(number) + ".tmp";
        m_descriptor = open(m_name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                            access == Access::Owner ? 0600 : 0666);
    }
    if (m_descriptor >= 0)
        m_unfinished.emplace(m_name, Unfinished::Kind::File);
}

TemporaryFile::~TemporaryFile() {
    close();
}

void TemporaryFile::setPermissions(mode_t permissions) {
    if (m_descriptor >= 0)
        fchmod(m_descriptor, permissions); // fails where the file system knows none
}

void TemporaryFile::takeAttributesOf(const QByteArray& path, const struct stat& status, mode_t most) {
    if (m_descriptor < 0)
        return;
    constexpr uid_t sameOwner = static_cast<uid_t>(-1);
    const bool isOwned = fchown(m_descriptor, status.st_uid, status.st_gid) == 0;
    const bool hasGroup = isOwned || fchown(m_descriptor, sameOwner, status.st_gid) == 0;
    mode_t permissions = status.st_mode & most & (isOwned ? 07777 : 0777);
    if (!hasGroup) // another group gets what everyone has
        permissions &= ~static_cast<mode_t>(S_IRWXG) | ((permissions & S_IRWXO) << 3);
    copyExtendedAttributes(path, m_descriptor);
    setPermissions(permissions); // last: a change of owner and of access control lists changes them too
}

bool TemporaryFile::write(const QByteArray& bytes) {
    return m_descriptor >= 0 && writeAll(m_descriptor, bytes) && fsync(m_descriptor) == 0;
}

bool TemporaryFile::takeTimesOf(const struct stat& status) {
    const std::array<timespec, 2> times = {status.st_atim, status.st_mtim};
    return futimens(m_descriptor, times.data()) == 0;
}

bool TemporaryFile::close() {
    return m_descriptor < 0 || ::close(std::exchange(m_descriptor, -1)) == 0;
}

bool TemporaryFile::replace(const QByteArray& path) {
    return close() && renameTo(path);
}

bool TemporaryFile::takeFreePlace(const QByteArray& path) {
    if (!close())
        return false;
    if (renameat2(AT_FDCWD, m_name.constData(), AT_FDCWD, path.constData(), RENAME_NOREPLACE) == 0) {
        m_unfinished->keep();
        return true;
    }
    if (errno == EEXIST)
        return false;
    // Some file systems know no such renaming. A link replaces nothing either; the other name goes with this object.
    if (link(m_name.constData(), path.constData()) == 0)
        return true;
    return errno != EEXIST && replaceEmptyFile(path);
}

/// For file systems that know no links either: makes an empty file, which fails where one is, and replaces that.
/// Only a crash between the two leaves the empty file.
bool TemporaryFile::replaceEmptyFile(const QByteArray& path) {
    const HeldSignals held;
    const int descriptor = open(path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (descriptor < 0)
        return false;
    Unfinished empty(path, Unfinished::Kind::File);
    ::close(descriptor);
    struct stat status = {};
    const bool isOurs =
        lstat(path.constData(), &status) == 0 && S_ISREG(status.st_mode) && status.st_size == 0;
    if (isOurs && !renameTo(path))
        return false;
    empty.keep();
    errno = EEXIST; // where it is no longer ours
    return isOurs;
}

bool TemporaryFile::renameTo(const QByteArray& path) {
    const HeldSignals held;
    if (rename(m_name.constData(), path.constData()) != 0)
        return false;
    m_unfinished->keep();
    return true;
}

bool writeAll(int descriptor, const QByteArray& bytes) {
    for (qint64 done = 0; done < bytes.size();) {
        const ssize_t count =
            write(descriptor, bytes.constData() + done, static_cast<std::size_t>(bytes.size() - done));
        if (count < 0 && errno != EINTR)
            return false;
        done += std::max<ssize_t>(count, 0);
    }
    return true;
}

} // namespace Reader
