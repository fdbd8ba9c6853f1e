#pragma once

namespace Signals {

/// From here on SIGINT, SIGTERM and SIGHUP, where they are not ignored, remove what is unfinished and end the program
/// with exit code 128 + number.
void endCleanly();

} // namespace Signals
