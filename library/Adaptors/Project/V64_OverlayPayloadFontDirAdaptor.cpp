#include "Adaptors/Project/V64_OverlayPayloadFontDirAdaptor.h"

#include "Archive/Internal/FlatObjects.h"

namespace Project {

void V64_OverlayPayloadFontDirAdaptor::adapt(Serialize::Json::FlatObject& document) {
    for (const auto& [id, preset] : Archive::Internal::selectObjects(document, "Overlay::Preset"))
        (*preset)["fontsDir"] = "";
}

} // namespace Project
