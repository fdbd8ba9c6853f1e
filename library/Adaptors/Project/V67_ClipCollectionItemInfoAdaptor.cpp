#include "Adaptors/Project/V67_ClipCollectionItemInfoAdaptor.h"

#include "Archive/Internal/FlatObjects.h"

using nlohmann::json;

namespace Project {

void V67_ClipCollectionItemInfoAdaptor::adapt(Serialize::Json::FlatObject& document) {
    for (const auto& clip : Archive::Internal::selectObjects(document, "Timeline::Clip")) {
        json* info = document.createObject("Timeline::CollectionItemInfo");
        for (const char* field : {"collectionId", "uniqueId", "packageId"})
            (*info)[field] = "";
        (*clip.object)["collectionItemInfo"] = document.createRef(info);
    }
}

} // namespace Project
