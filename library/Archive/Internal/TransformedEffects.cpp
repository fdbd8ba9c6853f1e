#include "Archive/Internal/TransformedEffects.h"

#include "Archive/Internal/ObjectIds.h"
#include "Archive/Internal/Predeclarations.h"
#include "Archive/Internal/RootObjects.h"
#include "Archive/Xml.h"

#include <QSet>

namespace Archive::Internal {

TransformedEffects::TransformedEffects(const QDomDocument& document, const QDomElement& archive,
                                       const QString& className) {
    const TypedElements objects = typedElements(archive, Words::RootObject);
    m_effects = ofType(objects, className);
    m_predeclarations = predeclarationsAmong(objects);
    if (m_effects.empty())
        return;
    collectRecords();
    m_greatestId = maxObjectId(document);
}

QDomElement TransformedEffects::recordOf(const QDomElement& effect) const {
    return m_records.value(idOf(effect));
}

long long TransformedEffects::declareTransform(QDomDocument& document, const QDomElement& effect) {
    return addPredeclaration(m_predeclarations, document, transformClass, idOf(effect), m_greatestId, -1, {});
}

void TransformedEffects::appendRefs(QDomDocument& document, const QDomElement& effect,
                                    std::initializer_list<long long> ids) {
    QDomElement refs = recordOf(effect).firstChildElement(Words::refs);
    if (refs.isNull())
        return;
    refs.setAttribute(Words::size, QString::number(ids.size()));
    long long index = 0;
    for (const long long id : ids) {
        QDomElement item = createArrayItem(document, ++index);
        item.appendChild(createObjectRef(document, Words::Data, id));
        refs.appendChild(item);
    }
}

void TransformedEffects::collectRecords() {
    QSet<long long> ids;
    for (const QDomElement& effect : m_effects)
        ids.insert(idOf(effect));
    const auto records = recordsOf(m_predeclarations);
    for (const Record& record : *records) {
        if (ids.contains(record.id))
            m_records.insert(record.id, record.data);
    }
}

} // namespace Archive::Internal
