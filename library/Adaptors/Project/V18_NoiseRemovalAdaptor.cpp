#include "Adaptors/Project/V18_NoiseRemovalAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/EffectObject.h"
#include "Archive/Internal/Reading.h"

#include <QSet>

using namespace Archive::Internal;

namespace Project {
namespace {

Elements collectEffects(ArchiveEditor& archive) {
    Elements effects;
    for (const auto& [object, type] : archive.rootObjects()) {
        if (type == QLatin1String("Effect::AudioNoiseReduction") ||
            type == QLatin1String("Effect::AudioNoiseGate"))
            effects.push_back(object);
    }
    return effects;
}

/// Changes the effects' records to records of noise suppressions without references. Gives the ids of the
/// effects that have a record.
QSet<long long> convertRecords(ArchiveEditor& archive, const Elements& effects) {
    QSet<long long> ids;
    for (const QDomElement& effect : effects)
        ids.insert(idOf(effect));
    QSet<long long> declared;
    for (const Record& record : archive.records()) {
        if (!ids.contains(record.id))
            continue;
        archive.setField(record.data, Words::typeName, "Effect::AudioNoiseSuppress");
        archive.removeField(record.data, Words::refs);
        archive.fields(record.data).array(Words::refs);
        declared.insert(record.id);
    }
    return declared;
}

/// Removes the records whose parent is one of the effects.
void removeRecordsOfParts(ArchiveEditor& archive, const QSet<long long>& effectIds) {
    archive.undeclareIf(
        [&](const Record& record) { return effectIds.contains(int64In(record.data, Words::poid)); });
}

/// Removes the effect and appends a noise suppression as the last child of the same parent.
void convertEffect(ArchiveEditor& archive, const QDomElement& effect) {
    const EffectObject created =
        newEffect(archive, "Effect::AudioNoiseSuppress", "Effect::AudioFilter", idOf(effect));
    archive.fields(created.object)
        .uint32("id", 57)
        .string("tag", "effect_noisesuppress")
        .uint32("uniqueId", 32773)
        .string("uniqueId", QString()); // Quirk: a second `uniqueId` in place of `description`
    archive.fields(created.root).int32("levelPercent", 50);

    const QDomElement parent = effect.parentNode().toElement();
    archive.remove(effect);
    archive.append(parent, created.root);
}

} // namespace

void V18_NoiseRemovalAdaptor::convert(ArchiveEditor& archive) {
    const Elements effects = collectEffects(archive);
    const QSet<long long> declared = convertRecords(archive, effects);
    if (declared.isEmpty())
        return; // Quirk: if no effect has a record, all effects stay
    removeRecordsOfParts(archive, declared);
    for (const QDomElement& effect : effects)
        convertEffect(archive, effect);
}

} // namespace Project
