#include "Adaptors/Project/V64_OverlayPayloadFontDirAdaptor.h"

#include "Archive/Internal/FlatEditor.h"

namespace Project {

void V64_OverlayPayloadFontDirAdaptor::convert(Archive::Internal::FlatEditor& editor) {
    for (const auto& [id, preset] : editor.objects("Overlay::Preset"))
        (*preset)["fontsDir"] = "";
}

} // namespace Project
