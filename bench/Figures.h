#pragma once

#include "bench/FlatTimes.h"
#include "bench/MigrationTimes.h"
#include "bench/Peers.h"

#include <nlohmann/json.hpp>

namespace Bench {

// What was measured as JSON, for bench/report.py. The members have the names of those of the structures, and their units.

nlohmann::json figuresOf(const MigrationTimes& times);
nlohmann::json figuresOf(const FlatTimes& times);
nlohmann::json figuresOf(const PeerTable& table);

} // namespace Bench
