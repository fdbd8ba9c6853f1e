#include "batch/WorkerProcess.h"

#include <sys/prctl.h>
#include <unistd.h>

#include <csignal>
#include <utility>

namespace Batch {
namespace {

/// Signals that a terminal sends to all processes at once are for the batch: it decides when its workers end.
class Process : public QProcess {
public:
    Process() : m_parent(getpid()) {}

protected:
    /// Runs in the new process, between fork and exec.
    void setupChildProcess() override {
        // Without the batch nobody records what a worker does.
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != m_parent)
            _exit(1);
        std::signal(SIGINT, SIG_IGN);
        std::signal(SIGHUP, SIG_IGN);
        std::signal(SIGTERM, SIG_DFL);
    }

private:
    const pid_t m_parent;
};

} // namespace

WorkerProcess::WorkerProcess(const QStringList& options, int timeout, Events events)
    : m_events(std::move(events)), m_timeout(timeout), m_process(std::make_unique<Process>()) {
    m_timer.setSingleShot(true);
    QObject::connect(&m_timer, &QTimer::timeout, m_process.get(), [this] {
        m_isTimedOut = true;
        end(true);
    });
    QObject::connect(m_process.get(), &QProcess::readyReadStandardOutput, m_process.get(),
                     [this] { readLines(); });
    QObject::connect(m_process.get(), QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished),
                     m_process.get(), [this] {
                         m_timer.stop();
                         readLines();
                         m_events.ended(*this);
                     });
    QObject::connect(m_process.get(), &QProcess::errorOccurred, m_process.get(),
                     [this](QProcess::ProcessError error) {
                         if (error == QProcess::FailedToStart)
                             m_events.ended(*this);
                     });
    m_process->setStandardErrorFile(QProcess::nullDevice());
    // This link stays the program that runs, also where the program's file is replaced meanwhile.
    m_process->start(QStringLiteral("/proc/self/exe"), QStringList{QStringLiteral("batch-worker")} + options);
}

WorkerProcess::~WorkerProcess() {
    m_process->disconnect();
    if (m_process->state() != QProcess::NotRunning) {
        m_process->kill();
        m_process->waitForFinished();
    }
}

void WorkerProcess::give(Row row, const std::string& line) {
    m_row = std::move(row);
    m_given.start();
    if (m_timeout > 0)
        m_timer.start(m_timeout * 1000);
    m_process->write(QByteArray::fromStdString(line));
}

Row WorkerProcess::takeRow() {
    m_timer.stop();
    ++m_files;
    Row row = std::move(*m_row);
    m_row.reset();
    return row;
}

void WorkerProcess::end(bool isHard) {
    if (isHard)
        m_process->kill();
    else
        m_process->terminate();
}

std::string WorkerProcess::howItEnded() const {
    return m_process->exitStatus() == QProcess::CrashExit
               ? "crashed, or was ended by someone"
               : "ended with exit code " + std::to_string(m_process->exitCode());
}

void WorkerProcess::readLines() {
    while (m_process->canReadLine()) {
        const QByteArray line = m_process->readLine();
        m_events.answered(*this, line.toStdString());
    }
}

} // namespace Batch
