#include "batch/WorkerProcess.h"

#include "Messages.h"

#include <QFile>

#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>
#include <vector>

namespace Batch {
namespace {

/// How a new process is to begin.
class SpawnOptions {
public:
    /// Its standard input and output are the socket, and what it says on standard error is dropped.
    explicit SpawnOptions(int socket) {
        posix_spawn_file_actions_init(&m_files);
        posix_spawn_file_actions_adddup2(&m_files, socket, STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&m_files, socket, STDOUT_FILENO);
        posix_spawn_file_actions_addopen(&m_files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        // A terminal sends these signals to all its processes; the batch decides when its workers end.
        sigset_t blocked = {};
        sigemptyset(&blocked);
        sigaddset(&blocked, SIGINT);
        sigaddset(&blocked, SIGHUP);
        posix_spawnattr_init(&m_attributes);
        posix_spawnattr_setsigmask(&m_attributes, &blocked);
        posix_spawnattr_setflags(&m_attributes, POSIX_SPAWN_SETSIGMASK);
    }
    ~SpawnOptions() {
        posix_spawn_file_actions_destroy(&m_files);
        posix_spawnattr_destroy(&m_attributes);
    }
    SpawnOptions(const SpawnOptions&) = delete;
    SpawnOptions& operator=(const SpawnOptions&) = delete;

    const posix_spawn_file_actions_t* files() const { return &m_files; }
    const posix_spawnattr_t* attributes() const { return &m_attributes; }

private:
    posix_spawn_file_actions_t m_files = {};
    posix_spawnattr_t m_attributes = {};
};

[[noreturn]] void failToStart(int error) {
    throw Messages::Failure(
        Messages::unexpected(std::string("no worker process can be started: ") + std::strerror(error)));
}

} // namespace

WorkerProcess::WorkerProcess(const QStringList& options, int timeout, Events events)
    : m_events(std::move(events)), m_timeout(timeout) {
    std::vector<QByteArray> words = {"adaptors", "batch-worker"};
    words.reserve(words.size() + static_cast<std::size_t>(options.size()));
    for (const QString& option : options)
        words.push_back(QFile::encodeName(option));
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (QByteArray& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    std::array<int, 2> ends = {-1, -1};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
        failToStart(errno);
    const SpawnOptions how(ends[1]);
    // This link stays the program that runs, also where the program's file is replaced meanwhile.
    const int error =
        posix_spawn(&m_process, "/proc/self/exe", how.files(), how.attributes(), pointers.data(), environ);
    close(ends[1]);
    if (error != 0) {
        close(ends[0]);
        failToStart(error);
    }
    m_socket = ends[0];
    m_notifier = std::make_unique<QSocketNotifier>(m_socket, QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(),
                     [this] { readAnswers(); });
    m_timer.setSingleShot(true);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] {
        m_isTimedOut = true;
        end(true);
    });
}

WorkerProcess::~WorkerProcess() {
    m_notifier.reset();
    if (!m_hasEnded) {
        end(true);
        waitpid(m_process, &m_status, 0);
    }
    close(m_socket);
}

void WorkerProcess::give(Row row, const std::string& line) {
    m_row = std::move(row);
    m_given.start();
    if (m_timeout > 0)
        m_timer.start(m_timeout * 1000);
    // A line always fits into the socket's buffer. Where the process is gone, its end is noticed by itself.
    static_cast<void>(!send(m_socket, line.data(), line.size(), MSG_NOSIGNAL));
}

Row WorkerProcess::takeRow() {
    m_timer.stop();
    ++m_files;
    Row row = std::move(*m_row);
    m_row.reset();
    return row;
}

void WorkerProcess::retire() {
    shutdown(m_socket, SHUT_WR);
}

void WorkerProcess::end(bool isHard) const {
    if (!m_hasEnded)
        kill(m_process, isHard ? SIGKILL : SIGTERM);
}

std::string WorkerProcess::howItEnded() const {
    return WIFSIGNALED(m_status) ? "was ended by signal " + std::to_string(WTERMSIG(m_status))
                                 : "ended with exit code " + std::to_string(exitCode());
}

int WorkerProcess::exitCode() const {
    return WIFEXITED(m_status) ? WEXITSTATUS(m_status) : -1;
}

void WorkerProcess::readAnswers() {
    std::array<char, 1 << 16> piece = {};
    const ssize_t count = recv(m_socket, piece.data(), piece.size(), MSG_DONTWAIT);
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (count > 0) {
        m_bytes.append(piece.data(), static_cast<int>(count));
        for (int end = m_bytes.indexOf('\n'); end >= 0; end = m_bytes.indexOf('\n')) {
            const std::string line = m_bytes.left(end).toStdString();
            m_bytes.remove(0, end + 1);
            m_events.answered(*this, line);
        }
        return;
    }
    // Only its end closes the socket.
    m_timer.stop();
    m_notifier->setEnabled(false);
    while (waitpid(m_process, &m_status, 0) < 0 && errno == EINTR) {
    }
    m_hasEnded = true;
    m_events.ended(*this);
}

} // namespace Batch
