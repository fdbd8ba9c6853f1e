#pragma once

#include "batch/BatchProgress.h"
#include "batch/State.h"
#include "batch/StopSignals.h"
#include "batch/Tally.h"
#include "batch/WorkerProcess.h"

#include <QEventLoop>

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace Batch {

/// Gives the waiting files of a state to worker processes and records what becomes of them.
class Coordinator {
public:
    struct Options {
        int jobs = 1;
        int timeout = 0;    ///< seconds for one file; 0 for no limit
        QStringList worker; ///< options of workers
        QByteArray results; ///< the output folder; empty with --in-place and --check
        bool isInPlace = false;
        bool force = false;
        /// Takes the JSON object of `migrate --json` for each file; empty where nobody wants it.
        std::function<void(const JsonReport::Json&)> takeReport;
    };

    Coordinator(Options options, State& state, Tally& tally, BatchProgress& progress,
                StopSignals& stopSignals);

    /// Works until no file waits any more, or a signal comes. Throws Messages::Failure where the state can't be written
    /// or no worker can be started; what is not recorded then is done again by the next run.
    void run();

private:
    using Slot = std::unique_ptr<WorkerProcess>;

    void startWorker(std::optional<Row> first = std::nullopt);
    void giveWork(WorkerProcess& worker);
    void give(WorkerProcess& worker, Row row);
    void takeAnswer(WorkerProcess& worker, const std::string& line);
    void takeEnd(WorkerProcess& worker);
    void takeDeath(WorkerProcess& worker);
    void record(const Row& row, const Row& facts);
    void stop();
    void endIfDone();
    void claim();
    void flush();
    /// Runs a part of an event's work; a failure ends the run.
    void guard(const std::function<void()>& part);
    void abandon(Messages::Message failure);

    Options m_options;
    State& m_state;
    Tally& m_tally;
    BatchProgress& m_progress;
    StopSignals& m_signals;
    QEventLoop m_loop;
    QTimer m_flushTimer;
    std::vector<Slot> m_workers;
    std::vector<Slot> m_ended;  ///< destroyed once none of their events is handled
    std::deque<Row> m_queue;    ///< claimed, and with no worker yet
    std::vector<Row> m_results; ///< not recorded yet
    std::optional<Messages::Message> m_failure;
    bool m_isStopping = false;
    bool m_isEnding = false; ///< at once
};

} // namespace Batch
