#include "Adaptors/Project/V55_AudioNormalizationEffectAdaptor.h"

#include "Archive/Internal/EffectObject.h"
#include "Archive/Internal/ObjectIds.h"
#include "Archive/Internal/Predeclarations.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <glog/logging.h>

namespace Project {
namespace {

namespace Words = Archive::Words;

const QString className = QStringLiteral("Effect::AudioNormalize");
const QString normalizationId = QStringLiteral("6c7a85ac-2a34-44a0-bd07-504f95370354");

bool isNormalizedClip(const QDomElement& object, const QString& type) {
    return type == QLatin1String("Timeline::Clip") &&
           Archive::valueOf(object, QStringLiteral("volumeNormalize")).toLongLong() != 0;
}

QDomElement createNormalization(QDomDocument& document, long long id) {
    auto effect = Archive::Internal::createEffectObject(document, className,
                                                        QStringLiteral("Effect::EffectDescriptor"), id);
    Archive::Internal::appendStrings(document, effect.object,
                                     {{"id", normalizationId},
                                      {"tag", QStringLiteral("effect_audio_normalize")},
                                      {"uniqueId", normalizationId},
                                      {"description", QString()}});
    effect.object.appendChild(Archive::createDouble(document, QStringLiteral("intensity"), 1.0));
    return effect.root;
}

/// Puts the effect before the clip's others. A clip without a list of effects gets none.
void prependEffect(QDomDocument& document, const QDomElement& clip, long long id) {
    QDomElement effects = clip.firstChildElement(QStringLiteral("effects"));
    if (effects.isNull())
        return;
    Archive::prependArrayElement(document, effects)
        .appendChild(Archive::createObjectRef(document, Words::Data, id));
}

} // namespace

void V55_AudioNormalizationEffectAdaptor::adapt(QDomDocument& document) {
    QDomElement archive = Archive::Internal::soleArchive(document);
    if (archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return;
    }
    const auto objects = Archive::Internal::typedElements(archive, Words::RootObject);
    QDomElement predeclarations = Archive::Internal::predeclarationsAmong(objects);
    Archive::Internal::ObjectIds ids(document);
    // `volumeNormalize` stays on every clip, although the effect has taken its place: documents of this
    // version have it so.
    for (const auto& [clip, type] : objects) {
        if (!isNormalizedClip(clip, type))
            continue;
        const long long id =
            Archive::addPredeclaration(predeclarations, document, className, 0, ids.greatest(), -1, {});
        archive.appendChild(createNormalization(document, id));
        prependEffect(document, clip, id);
    }
}

} // namespace Project
