#include "Adaptors/Project/V55_AudioEffectsGroupIdAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/EffectObject.h"
#include "Archive/Internal/Reading.h"

using namespace Archive::Internal;

namespace Project {
namespace {

constexpr const char* groupClasses[] = {
    "Effect::AudioEcho",  "Effect::AudioReverberation", "Effect::AudioMuffle",
    "Effect::AudioPhone", "Effect::AudioRadio",         "Effect::AudioPitch",
};

} // namespace

void V55_AudioEffectsGroupIdAdaptor::convert(ArchiveEditor& archive) {
    const QString groupId = "820c9391-6388-49f7-83a2-590014abcfa3";
    for (const auto& [effect, type] : archive.rootObjects()) {
        if (!isOneOf(groupClasses, type))
            continue;
        const QDomElement base = innerBase(effect);
        if (textIn(base, "uniqueId") == groupId)
            archive.setField(base, "uniqueId", textIn(base, "id"));
    }
}

} // namespace Project
