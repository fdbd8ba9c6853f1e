#include "Adaptors/Project/V57_NoiseGateEffectRangeAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/EffectObject.h"
#include "Archive/Xml.h"

using namespace Archive::Internal;

namespace Project {
namespace {

constexpr double defaultRange = 0.06;

} // namespace

void V57_NoiseGateEffectRangeAdaptor::convert(ArchiveEditor& archive) {
    for (const QDomElement& gate : archive.rootObjects("Effect::AudioNoiseGate")) {
        const double range = Archive::readValue(childOf(gate, "range"), defaultRange);
        archive.setNumber(childOf(innerBase(gate), "intensity"), 1.0 - range);
        archive.removeField(gate, "range");
    }
}

} // namespace Project
