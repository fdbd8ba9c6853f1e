#pragma once

// For this project's own use: the parts of the array operations.

#include "Archive/Internal/Walk.h"

#include <QDomElement>

#include <functional>

namespace Archive::Internal {

/// Gives an entry its `index`. Most keep the one that they have, and reading it is far cheaper than writing it.
void setIndex(QDomElement& item, long long index);

/// Gives the entries whose `Data` fulfils the predicate. The others get their position, from 1, as `index`.
Elements numberItems(QDomElement& array, const std::function<bool(QDomElement&)>& predicate);

/// Removes entries from their array, in order, and takes their number off its `size`; false where there are none.
bool removeItems(QDomElement& array, const Elements& victims);

} // namespace Archive::Internal
