#pragma once

#include "Commands.h"

namespace Batch {

/// The command `adaptors batch`: gives the exit code; throws Reader::Error and Messages::Failure.
int run(const Arguments& arguments, Output& output);

} // namespace Batch
