#pragma once

// For this project's own use.

#include <QDomElement>
#include <QHash>

#include <vector>

namespace Archive::Internal {

/// An entry, at any depth, of the `items` of an overlay preset.
struct OverlayItem {
    QDomElement data; ///< null for an `Item` without `Data`
    long long id;     ///< of `data`; 0 where it has none
    int presetType;   ///< `type` of the preset
};

/// What a step starts from that gives overlay items an object of their own.
struct OverlayItems {
    QDomElement predeclarations;
    std::vector<OverlayItem> items;
    QHash<long long, QDomElement> records; ///< entries of `predeclarations` by the id that they declare

    /// `refs` of the record of that object, possibly null.
    QDomElement refsOf(long long id) const;
};

OverlayItems collectOverlayItems(const QDomElement& archive);

} // namespace Archive::Internal
