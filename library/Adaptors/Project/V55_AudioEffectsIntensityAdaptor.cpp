#include "Adaptors/Project/V55_AudioEffectsIntensityAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/EffectObject.h"
#include "Archive/Internal/Reading.h"

using namespace Archive::Internal;

namespace Project {
namespace {

struct PhonePreset {
    const char* tag;
    double intensity;
    int gainUp;
    int gainDown;
};

struct PitchPreset {
    const char* tag;
    double intensity;
    double pitch;
};

// clang-format off
constexpr PhonePreset phonePresets[] = {
    {"Phone", 0.67, 30, 75},
};

constexpr PitchPreset pitchPresets[] = {
    {"PitchLow",      0.5, 1.5},
    {"PitchHigh",     0.5, 0.6},
    {"PitchVeryHigh", 0.8, 0.6},
};
// clang-format on

QString tagOf(const QDomElement& effect) {
    return textIn(innerBase(effect), "tag");
}

void setIntensity(ArchiveEditor& archive, const QDomElement& effect, double intensity) {
    archive.setNumber(childOf(innerBase(effect), "intensity"), intensity);
}

void convertPhone(ArchiveEditor& archive, const QDomElement& effect) {
    const PhonePreset* preset = findRow(phonePresets, &PhonePreset::tag, tagOf(effect));
    if (!preset)
        return;
    setIntensity(archive, effect, preset->intensity);
    // Quirk: only the `value` of the two gains is set: their types and any `binaryData` are kept.
    archive.setField(effect, "gainUp", preset->gainUp);
    archive.setField(effect, "gainDown", preset->gainDown);
}

void convertPitch(ArchiveEditor& archive, const QDomElement& effect) {
    const PitchPreset* preset = findRow(pitchPresets, &PitchPreset::tag, tagOf(effect));
    if (!preset)
        return;
    setIntensity(archive, effect, preset->intensity);
    archive.setNumber(childOf(effect, "pitch"), preset->pitch);
}

} // namespace

void V55_AudioEffectsIntensityAdaptor::convert(ArchiveEditor& archive) {
    for (const auto& [effect, type] : archive.rootObjects()) {
        if (type == QLatin1String("Effect::AudioPhone"))
            convertPhone(archive, effect);
        else if (type == QLatin1String("Effect::AudioPitch"))
            convertPitch(archive, effect);
    }
}

} // namespace Project
