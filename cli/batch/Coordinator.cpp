#include "batch/Coordinator.h"

#include "Failures.h"
#include "FileNames.h"
#include "JsonReport.h"
#include "Messages.h"
#include "batch/Leftovers.h"
#include "batch/Protocol.h"

#include <algorithm>
#include <utility>

namespace Batch {
namespace {

constexpr int filesAtOnce = 32;                    ///< that are claimed for each worker in one transaction
constexpr int flushInterval = 1000;                ///< milliseconds until a result is recorded at the latest
constexpr qint64 filesOfWorker = 5000;             ///< after which a worker is replaced
constexpr qint64 memoryOfWorker = qint64(1) << 29; ///< the same, in bytes
constexpr int patience = 5000; ///< milliseconds in which workers that are asked to end have to

Row failedAs(const std::string& kind, const std::string& reason, int code) {
    Row facts;
    facts.state = FileState::Failed;
    facts.code = code;
    facts.kind = kind;
    facts.reason = reason;
    return facts;
}

/// What `migrate --json` would have said of a file whose worker did not say it.
JsonReport::Json reportOf(const Row& row) {
    const Messages::Message message{static_cast<Messages::ExitCode>(row.code.value_or(Messages::Unexpected)),
                                    row.kind, row.reason};
    return JsonReport::object({"migrate", row.path.toStdString(), row.sha256, row.seconds}, {}, &message);
}

} // namespace

Coordinator::Coordinator(Options options, State& state, Tally& tally, BatchProgress& progress,
                         StopSignals& stopSignals)
    : m_options(std::move(options)), m_state(state), m_tally(tally), m_progress(progress),
      m_signals(stopSignals) {}

void Coordinator::run() {
    claim();
    const auto count = std::min<std::size_t>(static_cast<std::size_t>(m_options.jobs), m_queue.size());
    QObject::connect(&m_flushTimer, &QTimer::timeout, &m_loop, [this] { guard([this] { flush(); }); });
    m_flushTimer.start(flushInterval);
    m_signals.onSignal([this] { stop(); });
    if (m_signals.count() > 0)
        stop();
    for (std::size_t number = 0; number < count && !m_isStopping; ++number)
        startWorker();
    if (!m_workers.empty())
        m_loop.exec();
    m_flushTimer.stop();
    m_workers.clear();
    m_ended.clear();
    if (m_failure)
        throw Messages::Failure(*m_failure);
    for (Row& row : m_queue) {
        row.state = FileState::Waiting;
        m_results.push_back(std::move(row));
    }
    m_queue.clear();
    flush();
}

void Coordinator::startWorker(std::optional<Row> first) {
    WorkerProcess::Events events;
    events.answered = [this](WorkerProcess& worker, const std::string& line) {
        guard([&] { takeAnswer(worker, line); });
    };
    events.ended = [this](WorkerProcess& worker) { guard([&] { takeEnd(worker); }); };
    m_workers.push_back(
        std::make_unique<WorkerProcess>(m_options.worker, m_options.timeout, std::move(events)));
    if (first)
        give(*m_workers.back(), std::move(*first));
    else
        giveWork(*m_workers.back());
}

void Coordinator::giveWork(WorkerProcess& worker) {
    if (!m_isStopping && m_queue.empty())
        claim();
    if (m_isStopping || m_queue.empty()) {
        worker.retire();
        return;
    }
    Row row = std::move(m_queue.front());
    m_queue.pop_front();
    give(worker, std::move(row));
}

void Coordinator::give(WorkerProcess& worker, Row row) {
    Protocol::Request request;
    request.input = row.path;
    if (!row.output.isEmpty())
        request.output = m_options.results + '/' + row.output;
    request.isBundle = row.isBundle && !request.output.isEmpty();
    request.force = m_options.force || row.isReplaceable;
    request.wantsReport = bool(m_options.takeReport);
    worker.give(std::move(row), Protocol::lineFor(request));
}

void Coordinator::takeAnswer(WorkerProcess& worker, const std::string& line) {
    auto answer = Protocol::answerIn(line);
    if (!answer || !worker.row()) {
        worker.end(true); // this is no worker of ours; its end is handled as that of any other
        return;
    }
    if (answer->isLastWord) {
        worker.setLastWords(std::move(answer->report));
        return;
    }
    if (m_options.takeReport)
        m_options.takeReport(answer->report);
    record(worker.takeRow(), answer->facts);
    const bool isWorn = worker.files() >= filesOfWorker || answer->memory.value_or(0) > memoryOfWorker;
    if (isWorn && !m_isStopping)
        worker.retire();
    else
        giveWork(worker);
}

void Coordinator::takeEnd(WorkerProcess& worker) {
    const auto slot = std::find_if(m_workers.begin(), m_workers.end(),
                                   [&](const Slot& other) { return other.get() == &worker; });
    if (slot == m_workers.end())
        return;
    m_ended.push_back(std::move(*slot));
    m_workers.erase(slot);
    QTimer::singleShot(0, &m_loop, [this] { m_ended.clear(); });
    if (worker.row())
        takeDeath(worker);
    else if (!m_isStopping) {
        if (m_queue.empty())
            claim();
        if (!m_queue.empty())
            startWorker();
    }
    endIfDone();
}

/// A worker ended before it answered.
void Coordinator::takeDeath(WorkerProcess& worker) {
    const double seconds = worker.secondsSinceGiven();
    const bool isFirst = worker.files() == 0;
    const JsonReport::Json& lastWords = worker.lastWords();
    Row row = worker.takeRow();
    Leftovers::remove(row, m_options.results, m_options.isInPlace);
    if (m_isEnding) {
        m_queue.push_front(std::move(row));
        return;
    }
    const bool isOutOfMemory = worker.exitCode() == Messages::OutOfMemory && !lastWords.is_null();
    if (isOutOfMemory && !isFirst && !m_isStopping) {
        startWorker(std::move(row)); // what the worker had kept of other files may have been too much
        return;
    }
    const std::string name = row.path.toStdString();
    Row facts = worker.isTimedOut()
                    ? failedAs("timeout",
                               name + ": not done after " + std::to_string(m_options.timeout) +
                                   " seconds; check that it is a project, or give more with --timeout",
                               Messages::Unexpected)
                : isOutOfMemory
                    ? Protocol::factsIn(lastWords, Messages::OutOfMemory)
                    : failedAs("crashed",
                               name + ": the process that migrated it " + worker.howItEnded() +
                                   "; take it again with --retry-failed, or migrate it alone to see why",
                               Messages::Unexpected);
    facts.size = row.size;
    facts.time = row.time;
    facts.seconds = seconds;
    facts.path = row.path;
    if (m_options.takeReport)
        m_options.takeReport(isOutOfMemory ? lastWords : reportOf(facts));
    record(row, facts);
    if (m_isStopping)
        return;
    if (m_queue.empty())
        claim();
    if (!m_queue.empty())
        startWorker();
}

void Coordinator::record(const Row& row, const Row& facts) {
    Row result = facts;
    result.path = row.path;
    result.name = row.name;
    result.output = row.output;
    result.isBundle = row.isBundle;
    result.isReplaceable = row.isReplaceable && result.state == FileState::Failed;
    // The backup got the name that was free; where nothing was replaced there is none.
    result.backup = facts.outputSize && m_options.isInPlace ? row.backup : QByteArray();
    result.tool = ADAPTORS_VERSION;
    m_tally.migrated += result.state == FileState::Done;
    m_tally.current += result.state == FileState::Current;
    m_tally.failed += result.state == FileState::Failed;
    m_tally.incomplete += result.state == FileState::Done && result.code == Messages::Incomplete;
    m_progress.note(result);
    m_results.push_back(std::move(result));
}

void Coordinator::stop() {
    const int count = m_signals.count();
    if (!m_isStopping) {
        m_isStopping = true;
        m_progress.stopping();
    }
    if (count > 1 && !m_isEnding) {
        m_isEnding = true;
        for (const Slot& worker : m_workers)
            worker->end(false);
        QTimer::singleShot(patience, &m_loop, [this] {
            for (const Slot& worker : m_workers)
                worker->end(true);
        });
    }
    endIfDone();
}

void Coordinator::endIfDone() {
    if (m_workers.empty())
        m_loop.quit();
}

/// Records results, and marks the next files as in work. One transaction for both, since each waits for the disk.
void Coordinator::claim() {
    const auto transaction = [this] {
        Sqlite::Transaction changes = m_state.transaction();
        for (const Row& row : m_results)
            m_state.put(row);
        std::vector<Row> rows = m_state.first(FileState::Waiting, filesAtOnce * m_options.jobs);
        for (Row& row : rows) {
            Leftovers::noteBefore(row, m_options.results, m_options.isInPlace);
            row.state = FileState::Working;
            m_state.put(row);
        }
        changes.commit();
        return rows;
    };
    for (Row& row : transaction())
        m_queue.push_back(std::move(row));
    m_results.clear();
}

void Coordinator::flush() {
    if (m_results.empty())
        return;
    Sqlite::Transaction changes = m_state.transaction();
    for (const Row& row : m_results)
        m_state.put(row);
    changes.commit();
    m_results.clear();
}

void Coordinator::guard(const std::function<void()>& part) {
    if (auto failure = failureOf(part))
        abandon(std::move(*failure));
}

void Coordinator::abandon(Messages::Message failure) {
    if (!m_failure)
        m_failure = std::move(failure);
    m_isStopping = true;
    m_loop.quit();
}

} // namespace Batch
