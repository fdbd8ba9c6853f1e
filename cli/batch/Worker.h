#pragma once

#include "Commands.h"

namespace Batch {

/// The command of a worker process: answers a line of Protocol with another one until its standard input ends. Every
/// file is migrated as `adaptors migrate` does it.
int work(const Arguments& arguments, Output& output);

} // namespace Batch
