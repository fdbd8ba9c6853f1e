#include "SystemMemory.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string_view>

namespace {

/// "MemTotal:       24682416 kB"
std::optional<std::uint64_t> machineMemory(const std::string& root) {
    std::ifstream file(root + "/proc/meminfo");
    std::string key;
    std::uint64_t number = 0;
    for (std::string line; std::getline(file, line);) {
        if (std::istringstream(line) >> key >> number && key == "MemTotal:")
            return number * 1024;
    }
    return std::nullopt;
}

/// A file that holds a number, or "max" for none.
std::optional<std::uint64_t> limitIn(const std::string& path) {
    std::ifstream file(path);
    std::uint64_t number = 0;
    return file >> number ? std::optional(number) : std::nullopt;
}

/// The least limit of a group and of those that it is in. A group may lie outside what a container sees of the
/// hierarchy: the limit at its top is the container's then.
std::optional<std::uint64_t> leastLimit(const std::string& hierarchy, std::string group,
                                        const std::string& file) {
    std::optional<std::uint64_t> least;
    if (group.find("..") != std::string::npos)
        group.clear();
    while (true) {
        while (group.ends_with('/'))
            group.pop_back();
        std::string path = hierarchy;
        path.append(group).append("/").append(file);
        if (const auto limit = limitIn(path))
            least = std::min(least.value_or(*limit), *limit);
        if (group.empty())
            return least;
        group.resize(std::min(group.rfind('/'), group.size()));
    }
}

bool hasMemory(const std::string& controllers) {
    return (',' + controllers + ',').find(",memory,") != std::string::npos;
}

/// Lines of /proc/self/cgroup: "0::/user.slice/app" for version 2, "4:memory:/user.slice/app" for version 1.
std::optional<std::uint64_t> groupMemory(const std::string& root) {
    std::ifstream file(root + "/proc/self/cgroup");
    std::optional<std::uint64_t> least;
    const std::string mounts = root + "/sys/fs/cgroup";
    const auto take = [&](const std::optional<std::uint64_t>& limit) {
        if (limit)
            least = std::min(least.value_or(*limit), *limit);
    };
    for (std::string line; std::getline(file, line);) {
        const auto first = line.find(':');
        const auto second = line.find(':', std::min(first, line.size() - 1) + 1);
        if (first == std::string::npos || second == std::string::npos)
            continue;
        const std::string controllers = line.substr(first + 1, second - first - 1);
        const std::string group = line.substr(second + 1);
        if (controllers.empty()) {
            take(leastLimit(mounts, group, "memory.max"));
            take(leastLimit(mounts + "/unified", group, "memory.max"));
        } else if (hasMemory(controllers)) {
            take(leastLimit(mounts + "/memory", group, "memory.limit_in_bytes"));
        }
    }
    return least;
}

} // namespace

std::optional<SystemMemory> SystemMemory::find(const std::string& root) {
    const auto machine = machineMemory(root);
    const auto group = groupMemory(root);
    if (group && (!machine || *group < *machine))
        return SystemMemory{*group, true};
    return machine ? std::optional(SystemMemory{*machine, false}) : std::nullopt;
}
