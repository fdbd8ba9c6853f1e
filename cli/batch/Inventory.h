#pragma once

#include "batch/Finder.h"
#include "batch/Options.h"
#include "batch/State.h"

#include <QByteArray>

#include <optional>

namespace Batch {

/// Brings a state up to date with the files that are there.
class Inventory {
public:
    struct Options {
        QByteArray results; ///< the output folder; empty with --in-place and --check
        int to = 0;         ///< the schema version that outputs have
        Shard shard;
        bool force = false;
        bool retryFailed = false;
        bool choosesAnew = false; ///< the outputs of earlier runs are those of other options
    };

    Inventory(Options options, State& state) : m_options(std::move(options)), m_state(state) {}

    /// What the search needs to know of a file that it has seen before.
    std::optional<Content> known(const Found& found) const;

    /// Adds what was found, or updates its row.
    void take(const Found& found);

    /// Chooses outputs for the new files.
    void finish() { m_state.assignOutputs(); }

    /// Files that an earlier run has done and that are unchanged.
    qint64 kept() const { return m_kept; }

private:
    bool isOwn(const Found& found) const;
    bool isOfShard(const QByteArray& name) const;
    bool isToBeDone(Row& row, const Found& found) const;
    void wish(const Found& found);

    Options m_options;
    State& m_state;
    qint64 m_kept = 0;
};

} // namespace Batch
