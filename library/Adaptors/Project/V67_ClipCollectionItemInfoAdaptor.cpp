#include "Adaptors/Project/V67_ClipCollectionItemInfoAdaptor.h"

#include "Archive/Internal/FlatEditor.h"

using nlohmann::json;

namespace Project {

void V67_ClipCollectionItemInfoAdaptor::convert(Archive::Internal::FlatEditor& editor) {
    Serialize::Json::FlatObject& document = editor.document();
    for (const auto& clip : editor.objects("Timeline::Clip")) {
        json* info = document.createObject("Timeline::CollectionItemInfo");
        for (const char* field : {"collectionId", "uniqueId", "packageId"})
            (*info)[field] = "";
        (*clip.object)["collectionItemInfo"] = document.createRef(info);
    }
}

} // namespace Project
