#include "Adaptors/Project/V55_AudioNormalizationEffectAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/EffectObject.h"
#include "Archive/Internal/Reading.h"

using namespace Archive::Internal;

namespace Project {
namespace {

constexpr const char* className = "Effect::AudioNormalize";
constexpr const char* normalizationId = "6c7a85ac-2a34-44a0-bd07-504f95370354";

/// Adds the effect to the archive and gives its id.
long long appendNormalization(ArchiveEditor& archive) {
    const long long id = archive.declare(className);
    const EffectObject effect = newEffect(archive, className, "Effect::EffectDescriptor", id);
    archive.fields(effect.object)
        .string("id", normalizationId)
        .string("tag", "effect_audio_normalize")
        .string("uniqueId", normalizationId)
        .string("description", QString())
        .number("intensity", 1.0);
    archive.append(archive.root(), effect.root);
    return id;
}

} // namespace

void V55_AudioNormalizationEffectAdaptor::convert(ArchiveEditor& archive) {
    for (const QDomElement& clip : archive.rootObjects("Timeline::Clip")) {
        // Quirk: `volumeNormalize` stays on every clip, although the effect replaces it.
        if (int64In(clip, "volumeNormalize") != 0)
            archive.prependReference(childOf(clip, "effects"), appendNormalization(archive));
    }
}

} // namespace Project
