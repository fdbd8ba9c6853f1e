#include "batch/Lock.h"

#include "Messages.h"

#include <QElapsedTimer>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>

namespace Batch {
namespace {

constexpr int patience = 30000; ///< milliseconds; processes that were killed end in far less

/// Whether the process that wrote its number into the file is still there.
bool isOwnerThere(int descriptor) {
    std::array<char, 32> text = {};
    const ssize_t count = pread(descriptor, text.data(), text.size() - 1, 0);
    const pid_t owner = count > 0 ? QByteArray(text.data()).trimmed().toInt() : 0;
    return owner > 0 && (kill(owner, 0) == 0 || errno == EPERM);
}

/// Whether the path still leads to the open file: the run before removes it.
bool isAt(const QByteArray& path, int descriptor) {
    struct stat one = {};
    struct stat other = {};
    return stat(path.constData(), &one) == 0 && fstat(descriptor, &other) == 0 &&
           one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

} // namespace

Lock::Lock(const QByteArray& state) : m_path(state + ".lock") {
    QElapsedTimer timer;
    timer.start();
    while (true) {
        // Without O_CLOEXEC, so that workers hold the lock too.
        m_descriptor =
            open(m_path.constData(), O_RDWR | O_CREAT | O_NOFOLLOW, 0666); // NOLINT(android-cloexec-open)
        if (m_descriptor < 0)
            throw Messages::Failure(
                {Messages::Unwritable, "unwritable",
                 m_path.toStdString() + ": " + std::strerror(errno) +
                     "; check its folder and permissions, or give another place with --state"});
        const bool isTaken = flock(m_descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
        if (!isTaken && isAt(m_path, m_descriptor))
            break;
        if (isTaken && (isOwnerThere(m_descriptor) || timer.elapsed() > patience)) {
            close(m_descriptor);
            throw Messages::Failure({Messages::Unwritable, "in-use",
                                     state.toStdString() +
                                         ": another run is at work with this state; wait until that "
                                         "is done, or give another one with --state"});
        }
        close(m_descriptor);
        usleep(10000);
    }
    const QByteArray number = QByteArray::number(getpid()) + '\n';
    static_cast<void>(!ftruncate(m_descriptor, 0));
    static_cast<void>(!pwrite(m_descriptor, number.constData(), static_cast<std::size_t>(number.size()), 0));
}

Lock::~Lock() {
    unlink(m_path.constData());
    close(m_descriptor);
}

} // namespace Batch
