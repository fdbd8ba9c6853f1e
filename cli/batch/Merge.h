#pragma once

#include "batch/State.h"

#include <QByteArray>

#include <vector>

namespace Batch {

/// Adds the rows of states, such as those of shards, to another one. Throws Messages::Failure where they belong to
/// batches with different options, or where a run is at work on one.
void merge(const std::vector<QByteArray>& sources, State& target);

} // namespace Batch
