#pragma once

// For this project's own use.

#include <QDomElement>

#include <vector>

namespace Archive::Internal {

/// An entry of a map array: its `Item` with the first children `Key` and `Value`, each possibly null.
struct MapEntry {
    QDomElement item;
    QDomElement key;
    QDomElement value;
};

/// The entries that stand directly in the array, in order.
std::vector<MapEntry> mapEntries(const QDomElement& array);

} // namespace Archive::Internal
