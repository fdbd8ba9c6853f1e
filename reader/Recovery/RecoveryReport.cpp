#include "Recovery/RecoveryReport.h"

#include <array>
#include <utility>

namespace Reader {

std::string_view nameOf(Damage damage) {
    constexpr std::array<std::string_view, 8> names = {"cut-off",        "lost-bytes",    "broken-markup",
                                                       "bad-characters", "encoding",      "several-documents",
                                                       "version",        "lost-structure"};
    return names[static_cast<std::size_t>(damage)];
}

bool RecoveryReport::isComplete() const {
    return objectsClosed + objectsDropped + objectsMade + entriesDropped + referencesCleared +
                   charactersReplaced ==
               0 &&
           !newerVersion && clipsMoved.empty() && clipsReduced.empty() && clipsLost.empty();
}

void RecoveryReport::add(DamageFinding finding) {
    if (findings.size() < mostFindings)
        findings.push_back(std::move(finding));
    else
        ++findingsLeftOut;
}

} // namespace Reader
