#include "Reader/MigrationReport.h"

#include <algorithm>

namespace Reader {

bool MigrationReport::hasErrors() const {
    return std::any_of(log.begin(), log.end(), [](const LogLine& line) { return line.isError(); });
}

} // namespace Reader
