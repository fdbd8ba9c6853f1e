#include "Adaptors/Project/V33_EffectIntensityAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Reading.h"

using namespace Archive::Internal;

namespace Project {
namespace {

struct Strength {
    const char* className;
    const char* field;
    double factor;
};

// clang-format off
constexpr Strength strengths[] = {
    {"Effect::AddNoize", "level", 1},
    {"Effect::Sharpen", "level", 1},
    {"Effect::Erosion", "radius", 100},
    {"Effect::FindEdges", "blend", 1},
    {"Effect::HalfTone", "threshold", 1},
    {"Effect::Blur", "scale", 20},
    {"Effect::MotionBlur", "scale", 1},
    {"Effect::TiltShift", "brns", 20},
};
// clang-format on

constexpr double full = 1.0;

/// Removes the strength of an effect and gives the intensity that replaces it.
double takeIntensity(ArchiveEditor& archive, const QDomElement& effect) {
    if (effect.tagName() != Words::RootObject)
        return full;
    const Strength* strength = findRow(strengths, &Strength::className, Archive::typeOf(effect));
    if (!strength)
        return full;
    // Quirk: a missing strength counts as 1 and is multiplied, too: a blur without `scale` gets the intensity
    // 20.
    const double old = Archive::readValue(effect.firstChildElement(strength->field), full);
    archive.removeField(effect, strength->field);
    return old * strength->factor;
}

} // namespace

void V33_EffectIntensityAdaptor::convert(ArchiveEditor& archive) {
    for (const QDomElement& object : archive.baseParts("Effect::Object")) {
        const QDomElement effect = object.parentNode().parentNode().toElement();
        archive.fields(object).number("intensity", takeIntensity(archive, effect));
    }
}

} // namespace Project
