#pragma once

#include "JsonReport.h"
#include "batch/State.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QSocketNotifier>
#include <QStringList>
#include <QTimer>

#include <sys/types.h>

#include <functional>
#include <memory>
#include <optional>

namespace Batch {

/// A worker process as the batch sees it. It has one file at a time.
///
/// QProcess is not used: its new process waits for the batch before it becomes a worker, and where the batch is killed
/// just then, it waits for ever and keeps the lock of the state.
class WorkerProcess {
public:
    struct Events {
        std::function<void(WorkerProcess&, const std::string& line)> answered;
        std::function<void(WorkerProcess&)> ended;
    };

    /// Starts the process. `timeout` is for one file, in seconds; 0 is none. Throws Messages::Failure.
    WorkerProcess(const QStringList& options, int timeout, Events events);
    /// Ends the process, if it is there still, and waits for that.
    ~WorkerProcess();
    WorkerProcess(const WorkerProcess&) = delete;
    WorkerProcess& operator=(const WorkerProcess&) = delete;

    /// Sends the line of a request. The row stays here until takeRow().
    void give(Row row, const std::string& line);
    const std::optional<Row>& row() const { return m_row; }
    Row takeRow();
    double secondsSinceGiven() const { return static_cast<double>(m_given.elapsed()) / 1000; }
    /// How many files it had.
    qint64 files() const { return m_files; }

    /// Lets it end once it has answered.
    void retire();
    /// Ends it: with `isHard` without letting it remove what is unfinished.
    void end(bool isHard) const;

    /// The JSON object of `migrate --json` that it wrote when its memory ran out; null for none.
    const JsonReport::Json& lastWords() const { return m_lastWords; }
    void setLastWords(JsonReport::Json report) { m_lastWords = std::move(report); }

    bool isTimedOut() const { return m_isTimedOut; }
    /// Part of a sentence: "was ended by signal 9".
    std::string howItEnded() const;
    /// -1 where a signal ended it.
    int exitCode() const;

private:
    void readAnswers();

    Events m_events;
    int m_timeout;
    int m_socket = -1; ///< its standard input and output
    pid_t m_process = 0;
    int m_status = 0; ///< as waitpid() gives it
    bool m_hasEnded = false;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QByteArray m_bytes; ///< of a line that is not complete
    QTimer m_timer;
    QElapsedTimer m_given;
    std::optional<Row> m_row;
    JsonReport::Json m_lastWords;
    qint64 m_files = 0;
    bool m_isTimedOut = false;
};

} // namespace Batch
