#include "Archive/Internal/TransformedEffects.h"

#include "Archive/Internal/Reading.h"
#include "Archive/Internal/References.h"

namespace Archive::Internal {

TransformedEffects::TransformedEffects(ArchiveEditor& archive, const QString& className)
    : m_archive(archive), m_effects(archive.rootObjects(className)) {
    if (m_effects.empty())
        return;
    archive.startIds(); // so that ids of objects that the step removes are not used again
    for (const QDomElement& effect : m_effects)
        m_records.insert(idOf(effect), {});
    for (const Record& record : archive.records()) {
        if (const auto known = m_records.find(record.id); known != m_records.end())
            *known = record.data;
    }
}

QDomElement TransformedEffects::recordOf(const QDomElement& effect) const {
    return m_records.value(idOf(effect));
}

long long TransformedEffects::declareTransform(const QDomElement& effect) {
    return m_archive.declare(transformClass, idOf(effect));
}

void TransformedEffects::appendRefs(const QDomElement& effect, const QList<long long>& ids) {
    appendUncountedReferences(m_archive, recordOf(effect).firstChildElement(Words::refs), ids);
}

} // namespace Archive::Internal
