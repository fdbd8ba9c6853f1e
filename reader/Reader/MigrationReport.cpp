#include "Reader/MigrationReport.h"

#include <algorithm>

namespace Reader {

bool MigrationReport::hasErrors() const {
    return std::any_of(log.begin(), log.end(), [](const LogLine& line) { return line.isError(); });
}

bool MigrationReport::hasUnintendedLosses() const {
    return std::any_of(losses.begin(), losses.end(), [](const Loss& loss) { return !loss.isIntended; });
}

bool MigrationReport::hasHarmfulLosses() const {
    return std::any_of(losses.begin(), losses.end(),
                       [](const Loss& loss) { return !loss.isIntended && loss.wasUsed; });
}

} // namespace Reader
