#pragma once

#include "JsonReport.h"
#include "Terminal.h"
#include "batch/State.h"
#include "batch/Tally.h"

#include <QByteArray>

#include <string>

/// What a batch says at its end. All texts are fit for a terminal.
namespace Batch::Texts {

/// "12,345"
std::string number(qint64 value);

/// "0:05", "12:30" or "3:12:30"
std::string duration(double seconds);

/// What a state holds: counts, and a table of reasons with three examples each.
std::string table(State& state, const Terminal::Colours& colours);

/// The same as the keys of a JSON object.
JsonReport::Json tableAsJson(State& state);

/// "migrated: 12, current: 3, ..." of this run.
JsonReport::Json tallyAsJson(const Tally& tally);

} // namespace Batch::Texts
