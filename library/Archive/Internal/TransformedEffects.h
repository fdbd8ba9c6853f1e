#pragma once

// For this project's own use.

#include "Archive/Internal/Walk.h"

#include <QDomDocument>
#include <QHash>
#include <QString>

#include <initializer_list>

namespace Archive::Internal {

/// The effects of one class that a step gives matrices, and what it needs to declare these.
class TransformedEffects {
public:
    /// Reads the archive as it stands; ids are counted from the greatest that it has now.
    TransformedEffects(const QDomDocument& document, const QDomElement& archive, const QString& className);

    /// The effects, in document order.
    const Elements& effects() const { return m_effects; }

    /// The list of records, null where the archive has none.
    QDomElement& predeclarations() { return m_predeclarations; }

    /// The running object id.
    long long& greatestId() { return m_greatestId; }

    /// The effect's record; null for an effect that was not declared, which then is converted all the same.
    QDomElement recordOf(const QDomElement& effect) const;

    /// Declares a new matrix of the effect and gives its id.
    long long declareTransform(QDomDocument& document, const QDomElement& effect);

    /// Makes the effect's record refer to new objects. `size` and `index` count these alone, and what stood
    /// there before stays: the steps take it that nothing did.
    void appendRefs(QDomDocument& document, const QDomElement& effect, std::initializer_list<long long> ids);

private:
    void collectRecords();

    Elements m_effects;
    QDomElement m_predeclarations;
    QHash<long long, QDomElement> m_records; // by the effect's id; of several the last
    long long m_greatestId = 0;
};

/// The class name of stored matrices.
inline const QString transformClass = QStringLiteral("Types::Transform");

} // namespace Archive::Internal
