#pragma once

#include "batch/State.h"

#include <optional>
#include <string>

namespace Batch {

/// What the results of a batch depend on; kept in its state.
struct Settings {
    std::string options; ///< options of `migrate`, as words of a command line
    std::string results; ///< the output folder; empty for none
    bool isInPlace = false;
    std::string shard; ///< "2/8"

    /// Whether nothing is written.
    bool isCheck() const { return results.empty() && !isInPlace; }

    bool operator==(const Settings&) const = default;

    /// For people: "--to=40, --output-dir new, --shard 2/8".
    std::string asText() const;
};

/// None in a state that is new.
std::optional<Settings> readSettings(State& state);
void writeSettings(State& state, const Settings& settings);

} // namespace Batch
