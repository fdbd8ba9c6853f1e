#include "Adaptors/Project/V37_UnusedBlindsAndRippleParamsAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"

using namespace Archive::Internal;

namespace Project {

void V37_UnusedBlindsAndRippleParamsAdaptor::convert(ArchiveEditor& archive) {
    for (const QDomElement& ripple : archive.rootObjects("Transition::Ripple"))
        archive.removeField(ripple, "ampMode");
    for (const QDomElement& blinds : archive.rootObjects("Transition::Blinds"))
        archive.removeField(blinds, "mode");
}

} // namespace Project
