#pragma once

#include "Archive/Internal/ArchiveEditor.h"

#include <QHash>
#include <QString>

namespace Archive::Internal {

/// The effects of one class that a step gives matrices, with their records.
class TransformedEffects {
public:
    TransformedEffects(ArchiveEditor& archive, const QString& className);

    /// The effects, in document order.
    const Elements& effects() const { return m_effects; }

    /// The effect's record; null for an effect that was not declared. Of several the last.
    QDomElement recordOf(const QDomElement& effect) const;

    /// Declares a new matrix of the effect and gives its id.
    long long declareTransform(const QDomElement& effect);

    /// Makes the effect's record refer to new objects. Quirk: `size` and `index` count these alone, and what was in the
    /// list stays: the steps assume that it was empty.
    void appendRefs(const QDomElement& effect, const QList<long long>& ids);

private:
    ArchiveEditor& m_archive;
    Elements m_effects;
    QHash<long long, QDomElement> m_records; ///< by the effect's id
};

/// The class name of stored matrices.
inline const QString transformClass = QStringLiteral("Types::Transform");

} // namespace Archive::Internal
