#pragma once

// For this project's own use: the parts of the array operations.

#include "Archive/Internal/Walk.h"

#include <QDomElement>

namespace Archive::Internal {

/// Gives an entry its `index`. Most keep the one that they have, and reading it is far cheaper than writing it.
void setIndex(QDomElement& item, long long index);

/// Removes entries from their array, in order, and takes their number off its `size`; false where there are none.
bool removeItems(QDomElement& array, const Elements& victims);

} // namespace Archive::Internal
