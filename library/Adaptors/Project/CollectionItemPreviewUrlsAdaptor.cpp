#include "Adaptors/Project/CollectionItemPreviewUrlsAdaptor.h"

#include "Archive/Internal/FlatObjects.h"

namespace Project {

void CollectionItemPreviewUrlsAdaptor::adapt(Serialize::Json::FlatObject& document) {
    // Urls that are there already go: the field is set, not filled in.
    for (const auto& item : Archive::Internal::selectObjects(document, "Collection::Item"))
        (*item.object)["previewUrls"] = nlohmann::json::array();
}

} // namespace Project
