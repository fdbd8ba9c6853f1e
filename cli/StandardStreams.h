#pragma once

#include <optional>
#include <string>

namespace StandardStreams {

/// Opens those of the three that are closed, so that no other file gets their numbers. Reading and writing them fails as
/// before; only messages for standard error are dropped.
void occupy();

/// Sends out what was written to standard output. Gives the reason where not all of it could be written.
std::optional<std::string> flushOutput();

} // namespace StandardStreams
