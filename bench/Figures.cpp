#include "bench/Figures.h"

using nlohmann::json;

namespace Bench {
namespace {

json figuresOf(const std::vector<Part>& parts) {
    json list = json::array();
    for (const Part& part : parts)
        list.push_back({{"name", part.name}, {"milliseconds", part.milliseconds}});
    return list;
}

} // namespace

json figuresOf(const MigrationTimes& times) {
    return {{"elements", times.elements},
            {"bytesRead", times.bytesRead},
            {"bytesWritten", times.bytesWritten},
            {"load", times.load},
            {"write", times.write},
            {"create", times.create},
            {"freeLoaded", times.freeLoaded},
            {"freeMigrated", times.freeMigrated},
            {"convert", times.convert},
            {"floor", times.floor()},
            {"bound", times.bound()},
            {"migration", times.migration},
            {"steps", figuresOf(times.steps)},
            {"others", figuresOf(times.others)},
            {"loadMemory", times.loadMemory},
            {"migrationMemory", times.migrationMemory}};
}

json figuresOf(const FlatTimes& times) {
    return {
        {"version", times.version},    {"bytesRead", times.bytesRead}, {"bytesWritten", times.bytesWritten},
        {"parse", times.parse},        {"dump", times.dump},           {"floor", times.floor()},
        {"migration", times.migration}};
}

json figuresOf(const PeerTable& table) {
    json steps = json::array();
    for (const PeerTimes& times : table.steps)
        steps.push_back(
            {{"step", times.step}, {"own", times.own}, {"nodeLists", times.nodeLists}, {"xslt", times.xslt}});
    return {{"elements", table.elements}, {"steps", steps},           {"load", table.load},
            {"write", table.write},       {"xmlLoad", table.xmlLoad}, {"xmlWrite", table.xmlWrite}};
}

} // namespace Bench
