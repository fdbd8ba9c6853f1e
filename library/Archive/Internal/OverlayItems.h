#pragma once

#include <QDomElement>
#include <QHash>

#include <vector>

namespace Archive::Internal {

class ArchiveEditor;

/// An entry, at any depth, of the `items` of an overlay preset.
struct OverlayItem {
    QDomElement data; ///< null for an `Item` without `Data`
    long long id;     ///< of `data`; 0 where it has none
    int presetType;   ///< `type` of the preset
};

/// The overlay items of an archive, for steps that give each an object of its own. Logs an error where there is no
/// `Archive` or several, and then has no items.
class OverlayItems {
public:
    /// Makes the editor work on the records that refsOf() searches.
    explicit OverlayItems(ArchiveEditor& archive);

    /// The items, in document order.
    const std::vector<OverlayItem>& items() const { return m_items; }

    /// `refs` of the record of that object, possibly null.
    QDomElement refsOf(long long id) const;

private:
    void collectItems(const QDomElement& preset);
    void collectRecords(const QDomElement& predeclarations);

    std::vector<OverlayItem> m_items;
    QHash<long long, QDomElement> m_records; ///< entries of the predeclarations by the id that they declare
};

} // namespace Archive::Internal
