#pragma once

// The single steps of the operations on arrays. For code that needs them apart; steps use ArchiveEditor.

#include "Archive/Internal/Walk.h"

#include <QDomElement>

#include <functional>

namespace Archive::Internal {

/// Sets the `index` of an entry, unless it is right already: reading an attribute is far cheaper than writing
/// it.
void setIndex(QDomElement& item, long long index);

/// The entries for whose `Data` the predicate holds. The others get their position among themselves, from 1,
/// as `index`.
Elements numberItems(QDomElement& array, const std::function<bool(QDomElement&)>& predicate);

/// Removes these entries from the array and reduces `size` by their number. Returns false if the list is
/// empty.
bool removeItems(QDomElement& array, const Elements& items);

} // namespace Archive::Internal
