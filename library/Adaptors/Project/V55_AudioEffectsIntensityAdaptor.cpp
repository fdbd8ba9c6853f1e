#include "Adaptors/Project/V55_AudioEffectsIntensityAdaptor.h"

#include "Archive/Internal/EffectObject.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <glog/logging.h>

#include <algorithm>
#include <iterator>

namespace Project {
namespace {

namespace Words = Archive::Words;

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
    {"PitchLow", 0.5, 1.5},
    {"PitchHigh", 0.5, 0.6},
    {"PitchVeryHigh", 0.8, 0.6},
};
// clang-format on

template <class Preset, std::size_t count>
const Preset* findPreset(const Preset (&presets)[count], const QString& tag) {
    const auto* found = std::find_if(std::begin(presets), std::end(presets),
                                     [&](const Preset& preset) { return tag == QLatin1String(preset.tag); });
    return found == std::end(presets) ? nullptr : found;
}

QString tagOf(const QDomElement& effect) {
    return Archive::valueOf(Archive::Internal::innerBase(effect), QStringLiteral("tag"));
}

void writeChild(const QDomElement& parent, const QString& name, double value) {
    QDomElement child = parent.firstChildElement(name);
    Archive::writeValue(child, value);
}

void writeIntensity(const QDomElement& effect, double intensity) {
    writeChild(Archive::Internal::innerBase(effect), QStringLiteral("intensity"), intensity);
}

void convertPhone(const QDomElement& effect, const PhonePreset& preset) {
    writeIntensity(effect, preset.intensity);
    // Texts only: the two gains keep the type that they have.
    Archive::setValueOf(effect, QStringLiteral("gainUp"), QString::number(preset.gainUp));
    Archive::setValueOf(effect, QStringLiteral("gainDown"), QString::number(preset.gainDown));
}

void convertPitch(const QDomElement& effect, const PitchPreset& preset) {
    writeIntensity(effect, preset.intensity);
    writeChild(effect, QStringLiteral("pitch"), preset.pitch);
}

} // namespace

void V55_AudioEffectsIntensityAdaptor::adapt(QDomDocument& document) {
    // The first child, not the only one anywhere: this step lets further Archive elements pass.
    const QDomElement archive = document.firstChildElement(Words::Archive);
    if (archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return;
    }
    for (const auto& [effect, type] : Archive::Internal::typedElements(archive, Words::RootObject)) {
        if (type == QLatin1String("Effect::AudioPhone")) {
            if (const auto* preset = findPreset(phonePresets, tagOf(effect)))
                convertPhone(effect, *preset);
        } else if (type == QLatin1String("Effect::AudioPitch")) {
            if (const auto* preset = findPreset(pitchPresets, tagOf(effect)))
                convertPitch(effect, *preset);
        }
    }
}

} // namespace Project
