#include "Adaptors/Project/V18_NoiseRemovalAdaptor.h"

#include "Archive/Internal/EffectObject.h"
#include "Archive/Internal/Predeclarations.h"
#include "Archive/Internal/RootObjects.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <QSet>

#include <glog/logging.h>

namespace Project {
namespace {

namespace Words = Archive::Words;
using Archive::Internal::Elements;
using Archive::Internal::idOf;

const QString className = QStringLiteral("Effect::AudioNoiseSuppress");

bool isNoiseRemoval(const QString& type) {
    return type == QLatin1String("Effect::AudioNoiseReduction") ||
           type == QLatin1String("Effect::AudioNoiseGate");
}

class Impl {
public:
    Impl(QDomDocument& document, const QDomElement& archive) : m_document(document) { collect(archive); }

    bool hasWork() const { return !m_effects.empty() && !m_records.empty(); }

    void convert() {
        const QSet<long long> owners = convertRecords();
        removeRecordsBelow(owners);
        for (const QDomElement& effect : m_effects)
            replace(effect);
    }

private:
    void collect(const QDomElement& archive) {
        const auto objects = Archive::Internal::typedElements(archive, Words::RootObject);
        QSet<long long> ids;
        for (const auto& [object, type] : objects) {
            if (!isNoiseRemoval(type))
                continue;
            m_effects.push_back(object);
            ids.insert(idOf(object));
        }
        m_predeclarations = Archive::Internal::predeclarationsAmong(objects);
        const auto records = Archive::Internal::recordsOf(m_predeclarations);
        for (const auto& record : *records) {
            if (ids.contains(record.id))
                m_records.push_back(record.data);
        }
    }

    QSet<long long> convertRecords() {
        QSet<long long> ids;
        for (QDomElement& record : m_records) {
            Archive::setValueOf(record, Words::typeName, className);
            Archive::removeFirstChild(record, Words::refs);
            if (!record.isNull())
                record.appendChild(Archive::createArray(m_document, Words::refs, 0));
            ids.insert(Archive::Internal::declaredId(record));
        }
        return ids;
    }

    /// Removes the records of all that the effects owned.
    void removeRecordsBelow(const QSet<long long>& owners) {
        Archive::Internal::removeRecords(m_predeclarations, [&](const Archive::Internal::Record& record) {
            return owners.contains(Archive::valueOf(record.data, Words::poid).toLongLong());
        });
    }

    void replace(const QDomElement& effect) {
        QDomNode parent = effect.parentNode();
        Archive::Internal::removeChild(parent, effect);
        parent.appendChild(createNoiseSuppress(idOf(effect)));
    }

    QDomElement createNoiseSuppress(long long id) {
        auto effect = Archive::Internal::createEffectObject(m_document, className,
                                                            QStringLiteral("Effect::AudioFilter"), id);
        effect.object.appendChild(Archive::createUInt32(m_document, QStringLiteral("id"), 57));
        Archive::Internal::appendStrings(m_document, effect.object,
                                         {{"tag", QStringLiteral("effect_noisesuppress")}});
        effect.object.appendChild(Archive::createUInt32(m_document, QStringLiteral("uniqueId"), 32773));
        // A second `uniqueId`, where other effects have `description`: documents of this version have it so.
        Archive::Internal::appendStrings(m_document, effect.object, {{"uniqueId", QString()}});
        effect.root.appendChild(Archive::createInt32(m_document, QStringLiteral("levelPercent"), 50));
        return effect.root;
    }

    QDomDocument& m_document;
    QDomElement m_predeclarations;
    Elements m_effects;
    Elements m_records;
};

} // namespace

void V18_NoiseRemovalAdaptor::adapt(QDomDocument& document) {
    const QDomElement archive = Archive::Internal::soleArchive(document);
    if (archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return;
    }
    Impl removal(document, archive);
    if (removal.hasWork())
        removal.convert();
}

} // namespace Project
