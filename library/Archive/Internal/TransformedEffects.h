#pragma once

#include "Archive/Internal/ArchiveEditor.h"

#include <QHash>
#include <QString>

namespace Archive::Internal {

/// The effects of one class, with their records, for a step that adds matrices to them.
class TransformedEffects {
public:
    TransformedEffects(ArchiveEditor& archive, const QString& className);

    /// The effects, in document order.
    const Elements& effects() const { return m_effects; }

    /// The record of the effect, the last one if there are several; null for an effect that is not declared.
    QDomElement recordOf(const QDomElement& effect) const;

    /// Declares a new matrix as a child of the effect and gives its id.
    long long declareTransform(const QDomElement& effect);

    /// Adds references to new objects to the effect's record. Quirk: the list is assumed to be empty: `size`
    /// and `index` count the new entries only, but old entries stay.
    void appendRefs(const QDomElement& effect, const QList<long long>& ids);

private:
    ArchiveEditor& m_archive;
    Elements m_effects;
    QHash<long long, QDomElement> m_records; ///< by the effect's id
};

/// The class name of stored matrices.
inline const QString transformClass = QStringLiteral("Types::Transform");

} // namespace Archive::Internal
