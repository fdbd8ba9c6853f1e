#include "Archive/Internal/PredeclarationEdits.h"

#include "Archive/Internal/ArrayItems.h"
#include "Archive/Internal/Predeclarations.h"
#include "Archive/Internal/Words.h"
#include "Archive/Xml.h"

namespace Archive::Internal {

void PredeclarationEdits::remove(long long id) {
    m_removals[id] = m_added.size();
    m_addedBeforeLastRemoval = m_added.size();
}

long long PredeclarationEdits::add(const QString& typeName, long long poid, long long& maxId, long long oid,
                                   const QList<long long>& refs) {
    const long long id = addPredeclaration(m_predeclarations, m_document, typeName, poid, maxId, oid, refs);
    if (!m_predeclarations.isNull())
        m_added.push_back(m_predeclarations.lastChildElement());
    return id;
}

void PredeclarationEdits::finish() {
    if (m_removals.isEmpty())
        return; // no call, no renumbering

    // What was added behind the last removal keeps the index that it got, less the removals that `size` lacked.
    std::vector<long long> lateIndexes;
    for (std::size_t number = m_addedBeforeLastRemoval; number < m_added.size(); ++number)
        lateIndexes.push_back(m_added[number].attribute(Words::index).toLongLong());

    std::size_t added = 0;
    unsigned long long victims = 0;
    removeRecords(m_predeclarations, [&](const Record& record) {
        const auto removal = m_removals.constFind(record.id);
        const bool isRemoved = removal != m_removals.constEnd();
        const bool isNew = added < m_added.size() && record.item == m_added[added];
        // An old record was there at every removal, a new one only at those that came after it.
        const bool goes = isRemoved && (!isNew || *removal > added);
        added += isNew ? 1 : 0;
        victims += goes ? 1 : 0;
        return goes;
    });

    for (std::size_t late = 0; late < lateIndexes.size(); ++late) {
        const auto index =
            static_cast<long long>(static_cast<unsigned long long>(lateIndexes[late]) - victims);
        setIndex(m_added[m_addedBeforeLastRemoval + late], index);
    }
    m_added.clear();
    m_removals.clear();
    m_addedBeforeLastRemoval = 0;
}

} // namespace Archive::Internal
