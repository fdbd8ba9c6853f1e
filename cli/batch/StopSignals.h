#pragma once

#include <QSocketNotifier>

#include <functional>
#include <memory>

namespace Batch {

/// From its construction on, SIGINT, SIGTERM and SIGHUP no longer end the process, but are counted. One that is ignored
/// stays ignored.
///
/// There may be one such object: a signal handler can be handed nothing.
class StopSignals {
public:
    StopSignals();
    ~StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    /// Calls this for each signal, from the event loop.
    void onSignal(std::function<void()> notify);

    /// How many came so far.
    int count();
    /// The number of the first one; 0 for none.
    int first();

private:
    void readPipe();

    int m_count = 0;
    int m_first = 0;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace Batch
