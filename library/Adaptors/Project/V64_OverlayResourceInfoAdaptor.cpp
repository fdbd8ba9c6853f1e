#include "Adaptors/Project/V64_OverlayResourceInfoAdaptor.h"

#include "Archive/Internal/FlatObjects.h"

namespace Project {

void V64_OverlayResourceInfoAdaptor::adapt(Serialize::Json::FlatObject& document) {
    for (const auto& [id, item] : Archive::Internal::selectObjects(document, "Overlay::Item"))
        (*item)["resourcesInfo"] = nlohmann::json::array();
}

} // namespace Project
