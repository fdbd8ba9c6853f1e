#include "Reader/MigrationReport.h"

#include <algorithm>

namespace Reader {

std::vector<Part> RepairMade::clips() const {
    std::vector<Part> clips;
    for (const LoggedObject& object : objects) {
        const bool isNew = object.clip && std::none_of(clips.begin(), clips.end(), [&](const Part& clip) {
                               return clip.id == object.clip->id;
                           });
        if (isNew)
            clips.push_back(*object.clip);
    }
    return clips;
}

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
