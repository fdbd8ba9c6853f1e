#include "Archive/Internal/TransformedEffects.h"

#include "Archive/Internal/ObjectIds.h"
#include "Archive/Internal/Predeclarations.h"
#include "Archive/Xml.h"

namespace Archive::Internal {

TransformedEffects::TransformedEffects(const QDomDocument& document, const QDomElement& archive,
                                       const QString& className) {
    collect(archive, className);
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

void TransformedEffects::collect(const QDomElement& archive, const QString& className) {
    for (const QDomElement& object : elements(archive, Words::RootObject)) {
        const QString type = typeOf(object);
        if (type == Words::Predeclarator)
            m_predeclarations = object.firstChildElement(Words::predeclarations);
        else if (type == className)
            m_effects.push_back(object);
    }
}

void TransformedEffects::collectRecords() {
    QSet<long long> ids;
    for (const QDomElement& effect : m_effects)
        ids.insert(idOf(effect));
    for (const QDomElement& item : children(m_predeclarations, Words::Item)) {
        const QDomElement record = item.firstChildElement(Words::Data);
        const long long id = declaredId(record);
        if (ids.contains(id))
            m_records.insert(id, record);
    }
}

long long idOf(const QDomElement& object) {
    return object.attribute(Words::objectId).toLongLong();
}

} // namespace Archive::Internal
