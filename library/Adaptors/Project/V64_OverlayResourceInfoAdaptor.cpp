#include "Adaptors/Project/V64_OverlayResourceInfoAdaptor.h"

#include "Archive/Internal/FlatEditor.h"

namespace Project {

void V64_OverlayResourceInfoAdaptor::convert(Archive::Internal::FlatEditor& editor) {
    for (const auto& [id, item] : editor.objects("Overlay::Item"))
        (*item)["resourcesInfo"] = nlohmann::json::array();
}

} // namespace Project
