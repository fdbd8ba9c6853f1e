#pragma once

// Facts about a tree that the parser collects while it builds the tree. ArchiveEditor uses them in place of a
// first search.

#include "Archive/Internal/GreatestId.h"
#include "Archive/Internal/Walk.h"

#include <QHash>
#include <QString>

#include <memory>
#include <optional>

namespace Archive::Internal {

/// Whether steps search the whole document for that type. The index keeps lists of such elements.
inline bool isListedType(const QString& type) {
    return type == Words::StringPtr || type == Words::ClipTiming;
}

/// The elements of the listed types.
using ElementsByType = QHash<QString, Elements>;

/// The collected facts.
struct TreeFacts {
    std::size_t archives = 0; ///< elements of the tag `Archive`
    std::shared_ptr<TypedElements::List> rootObjects = std::make_shared<TypedElements::List>();
    std::shared_ptr<TypedElements::List> baseParts = std::make_shared<TypedElements::List>();
    QHash<QString, std::size_t> objectsByType; ///< the number of elements with an object id, by `type`
    /// All elements of the listed types.
    ElementsByType elementsByType = {{Words::StringPtr, {}}, {Words::ClipTiming, {}}};
    std::optional<GreatestId> greatest; ///< the result of searchGreatestId()
    /// Writing and reading the document gives the same tree, and its text names types only in attributes
    /// `type`.
    bool showsTypes = false;
};

} // namespace Archive::Internal
