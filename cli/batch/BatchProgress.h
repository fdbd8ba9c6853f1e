#pragma once

#include "Output.h"
#include "batch/Options.h"
#include "batch/State.h"
#include "batch/Tally.h"

#include <QElapsedTimer>
#include <QTimer>

#include <string>

namespace Batch {

/// Shows on standard error how far a run is: a bar on a terminal, a line from time to time elsewhere, or events.
class BatchProgress {
public:
    BatchProgress(const Output& output, ProgressForm form);
    ~BatchProgress() { clear(); }
    BatchProgress(const BatchProgress&) = delete;
    BatchProgress& operator=(const BatchProgress&) = delete;

    /// The search for projects begins, and the work.
    void search();
    void begin(const Tally& tally);
    /// What became of a file.
    void note(const Row& row);
    /// A signal stops the run: its workers end what they have.
    void stopping();
    void end();

private:
    enum class Shape { None, Bar, Lines, Events };

    void show();
    void clear();
    void showEvent(const char* event) const;
    /// Seconds that the rest will take; none where that can't be said yet.
    std::optional<double> remaining() const;

    Shape m_shape;
    const Tally* m_tally = nullptr;
    QElapsedTimer m_elapsed;
    QTimer m_timer;
    bool m_isShown = false;
    bool m_isStopping = false;
};

/// How far a run is, as a line for people: "[#####-----] 500 of 1,000, 3 failed, 0:12 left", not longer than `width`.
/// Without a width there is no bar.
std::string progressText(const Tally& tally, std::optional<double> secondsLeft, int width);

} // namespace Batch
