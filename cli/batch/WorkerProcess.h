#pragma once

#include "JsonReport.h"
#include "batch/State.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>

namespace Batch {

/// A worker process as the batch sees it. It has one file at a time.
class WorkerProcess {
public:
    struct Events {
        std::function<void(WorkerProcess&, const std::string& line)> answered;
        std::function<void(WorkerProcess&)> ended;
    };

    /// Starts the process. `timeout` is for one file, in seconds.
    WorkerProcess(const QStringList& options, int timeout, Events events);
    ~WorkerProcess();
    WorkerProcess(const WorkerProcess&) = delete;
    WorkerProcess& operator=(const WorkerProcess&) = delete;

    /// Sends the line of a request. The row stays here until takeRow().
    void give(Row row, const std::string& line);
    const std::optional<Row>& row() const { return m_row; }
    Row takeRow();
    double secondsSinceGiven() const { return static_cast<double>(m_given.elapsed()) / 1000; }
    /// How many files it had before this one.
    qint64 filesBefore() const { return m_files; }

    /// Lets it end once it has answered.
    void retire() { m_process->closeWriteChannel(); }
    /// Ends it: with `isHard` without letting it remove what is unfinished.
    void end(bool isHard);

    /// The JSON object of `migrate --json` that it wrote when its memory ran out; null for none.
    const JsonReport::Json& lastWords() const { return m_lastWords; }
    void setLastWords(JsonReport::Json report) { m_lastWords = std::move(report); }

    bool isTimedOut() const { return m_isTimedOut; }
    bool isStarted() const { return m_process->error() != QProcess::FailedToStart; }
    /// Part of a sentence: "was ended by signal 9".
    std::string howItEnded() const;
    int exitCode() const {
        return m_process->exitStatus() == QProcess::NormalExit ? m_process->exitCode() : -1;
    }

private:
    void readLines();

    Events m_events;
    int m_timeout;
    std::unique_ptr<QProcess> m_process;
    QTimer m_timer;
    QElapsedTimer m_given;
    std::optional<Row> m_row;
    JsonReport::Json m_lastWords;
    qint64 m_files = 0;
    bool m_isTimedOut = false;
};

} // namespace Batch
