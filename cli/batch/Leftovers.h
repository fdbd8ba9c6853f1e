#pragma once

#include "batch/State.h"

namespace Batch::Leftovers {

/// Notes in the row what is there before the work on its file begins. `results` is the output folder; empty with
/// --in-place and --check.
void noteBefore(Row& row, const QByteArray& results, bool isInPlace);

/// Removes what a worker left that was killed while it had the file, so that the tree is as it was when noteBefore()
/// was called: temporary files, an output, side files and a backup. No process may be at work on the file.
void remove(const Row& row, const QByteArray& results, bool isInPlace);

} // namespace Batch::Leftovers
