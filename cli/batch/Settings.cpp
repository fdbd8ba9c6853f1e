#include "batch/Settings.h"

namespace Batch {

std::string Settings::asText() const {
    std::string text = options;
    if (!results.empty())
        text += (text.empty() ? "" : " ") + std::string("--output-dir ") + results;
    if (shard != "1/1")
        text += " --shard " + shard;
    return text;
}

std::optional<Settings> readSettings(State& state) {
    const auto options = state.setting("options");
    if (!options)
        return std::nullopt;
    return Settings{*options, state.setting("results").value_or(""),
                    state.setting("in-place").value_or("") == "1", state.setting("shard").value_or("1/1")};
}

void writeSettings(State& state, const Settings& settings) {
    state.set("options", settings.options);
    state.set("results", settings.results);
    state.set("in-place", settings.isInPlace ? "1" : "0");
    state.set("shard", settings.shard);
}

} // namespace Batch
