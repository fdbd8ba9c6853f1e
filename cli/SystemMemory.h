#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// How much memory there is for this process.
struct SystemMemory {
    std::uint64_t bytes;
    bool isContainers; ///< a limit of its control group, less than the machine has

    /// The machine's memory or the least limit of a control group that this process is in, version 1 or 2; none where
    /// the system doesn't say. `root` is the folder that holds /proc and /sys.
    static std::optional<SystemMemory> find(const std::string& root = {});
};
