#include "Adaptors/Project/CollectionItemPreviewUrlsAdaptor.h"

#include "Archive/Internal/FlatEditor.h"

namespace Project {

void CollectionItemPreviewUrlsAdaptor::convert(Archive::Internal::FlatEditor& editor) {
    // Quirk: existing URLs are removed, because the field is always set.
    for (const auto& item : editor.objects("Collection::Item"))
        (*item.object)["previewUrls"] = nlohmann::json::array();
}

} // namespace Project
