#pragma once

// For this project's own use.

#include "Archive/Internal/GreatestId.h"
#include "Archive/Internal/Walk.h"

#include <QHash>
#include <QString>

#include <memory>
#include <optional>

namespace Archive::Internal {

/// What a tree holds, as whoever builds it sees it pass by, so that nobody has to search for it at once.
struct TreeFacts {
    std::size_t archives = 0; ///< elements of the tag `Archive`
    std::shared_ptr<TypedElements::List> rootObjects = std::make_shared<TypedElements::List>();
    std::shared_ptr<TypedElements::List> baseParts = std::make_shared<TypedElements::List>();
    QHash<QString, std::size_t> objectsByType; ///< elements with an object id
    std::optional<GreatestId> greatest;        ///< what searchGreatestId() gives
    /// The tree is the same when it is written and read again, and its text names types only in attributes `type`.
    bool showsTypes = false;
};

} // namespace Archive::Internal
