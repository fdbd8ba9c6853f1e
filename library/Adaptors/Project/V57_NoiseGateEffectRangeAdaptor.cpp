#include "Adaptors/Project/V57_NoiseGateEffectRangeAdaptor.h"

#include "Archive/Internal/EffectObject.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <glog/logging.h>

namespace Project {
namespace {

constexpr double defaultRange = 0.06;

void convert(QDomElement& gate) {
    const QString name = QStringLiteral("range");
    const double range = Archive::readValue(gate.firstChildElement(name), defaultRange);
    QDomElement intensity = Archive::Internal::innerBase(gate).firstChildElement(QStringLiteral("intensity"));
    Archive::writeValue(intensity, 1.0 - range);
    Archive::removeFirstChild(gate, name);
}

} // namespace

void V57_NoiseGateEffectRangeAdaptor::adapt(QDomDocument& document) {
    // An Archive element has to be there, but gates are looked for in the whole document.
    if (document.firstChildElement(Archive::Words::Archive).isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return;
    }
    for (QDomElement& gate :
         Archive::Internal::rootObjects(document, QStringLiteral("Effect::AudioNoiseGate")))
        convert(gate);
}

} // namespace Project
