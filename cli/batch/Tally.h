#pragma once

#include <QtGlobal>

namespace Batch {

/// How far a run is. Numbers of files.
struct Tally {
    qint64 total = 0; ///< that this run is to migrate
    qint64 migrated = 0;
    qint64 current = 0; ///< had the version already
    qint64 failed = 0;
    qint64 incomplete = 0; ///< of those migrated, how many lack something
    qint64 kept = 0;       ///< done by an earlier run and unchanged

    qint64 finished() const { return migrated + current + failed; }
};

} // namespace Batch
