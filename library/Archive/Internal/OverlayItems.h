#pragma once

#include <QDomElement>
#include <QHash>

#include <vector>

namespace Archive::Internal {

class ArchiveEditor;

/// An entry, at any depth, of the `items` of an overlay preset.
struct OverlayItem {
    QDomElement data; ///< null if the `Item` has no `Data`
    long long id;     ///< of `data`; 0 if it has none
    int presetType;   ///< `type` of the preset
};

/// The overlay items of an archive, for steps that create an object for each. If there is no `Archive` or
/// several, logs an error and has no items.
class OverlayItems {
public:
    /// Makes the records that refsOf() searches the predeclarations of the editor.
    explicit OverlayItems(ArchiveEditor& archive);

    /// The items, in document order.
    const std::vector<OverlayItem>& items() const { return m_items; }

    /// The array `refs` of the record of that object; null if there is none.
    QDomElement refsOf(long long id) const;

private:
    void collectItems(const QDomElement& preset);

    std::vector<OverlayItem> m_items;
    QHash<long long, QDomElement> m_records; ///< entries of the predeclarations by the id that they declare
};

} // namespace Archive::Internal
