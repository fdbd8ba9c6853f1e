#include "Adaptors/Project/V33_EffectIntensityAdaptor.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <algorithm>
#include <iterator>

namespace Project {
namespace {

namespace Words = Archive::Words;

struct Strength {
    const char* className;
    const char* child;
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

const Strength* strengthOf(const QString& className) {
    const auto* found = std::find_if(std::begin(strengths), std::end(strengths), [&](const Strength& row) {
        return className == QLatin1String(row.className);
    });
    return found == std::end(strengths) ? nullptr : found;
}

/// An absent strength counts as 1 before the factor: a blur without `scale` has the intensity 20.
void fold(QDomElement& effect, const Strength& strength, QDomElement& intensity) {
    const QString child = QString::fromLatin1(strength.child);
    const double old = Archive::readValue(effect.firstChildElement(child), full);
    Archive::writeValue(intensity, old * strength.factor);
    Archive::removeFirstChild(effect, child);
}

} // namespace

void V33_EffectIntensityAdaptor::adapt(QDomDocument& document) {
    for (QDomElement& object :
         Archive::Internal::elements(document, Words::BaseOfObject, QStringLiteral("Effect::Object"))) {
        QDomElement intensity = Archive::createDouble(document, QStringLiteral("intensity"), full);
        object.appendChild(intensity);
        QDomElement effect = object.parentNode().parentNode().toElement();
        if (effect.tagName() != Words::RootObject)
            continue;
        if (const Strength* strength = strengthOf(Archive::typeOf(effect)))
            fold(effect, *strength, intensity);
    }
}

} // namespace Project
