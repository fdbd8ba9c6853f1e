#pragma once

#include "Adaptors/AbstractAdaptorJson.h"

namespace Project {

/// As the reader chooses: gives every "Collection::Item" an empty `previewUrls`, which old files may lack.
class CollectionItemPreviewUrlsAdaptor : public Bundle::AbstractAdaptorJson {
public:
    void adapt(Serialize::Json::FlatObject& document) override;
};

} // namespace Project
