#pragma once

// For this project's own use.

#include <QDomDocument>
#include <QHash>
#include <QList>
#include <QString>

#include <vector>

namespace Archive::Internal {

/// A run of removePredeclare() and addPredeclaration() calls in any order. The result is that of one call each, to
/// the last `index` and also where `size` is wrong, but all removals are made by finish(), in one walk. Nothing
/// else may add or remove records in between.
class PredeclarationEdits {
public:
    PredeclarationEdits(const QDomDocument& document, const QDomElement& predeclarations)
        : m_document(document), m_predeclarations(predeclarations) {}

    void remove(long long id);
    long long add(const QString& typeName, long long poid, long long& maxId, long long oid,
                  const QList<long long>& refs);
    void finish();

private:
    QDomDocument m_document;
    QDomElement m_predeclarations;
    std::vector<QDomElement> m_added;
    QHash<long long, std::size_t> m_removals; ///< by id: how many records had been added at its last removal
    std::size_t m_addedBeforeLastRemoval = 0;
};

} // namespace Archive::Internal
