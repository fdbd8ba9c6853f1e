#include "Adaptors/Project/CollectionItemPreviewUrlsAdaptor.h"

#include "Archive/Internal/FlatObjects.h"

namespace Project {

void CollectionItemPreviewUrlsAdaptor::adapt(Serialize::Json::FlatObject& document) {
    // Quirk: existing URLs are removed, because the field is always set.
    for (const auto& item : Archive::Internal::selectObjects(document, "Collection::Item"))
        (*item.object)["previewUrls"] = nlohmann::json::array();
}

} // namespace Project
