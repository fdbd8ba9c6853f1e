#pragma once

#include "Adaptors/AbstractAdaptorJson.h"

namespace Project {

/// Runs on request only: sets `previewUrls`, which old files may lack, of every "Collection::Item" to an
/// empty list.
class CollectionItemPreviewUrlsAdaptor : public Bundle::AbstractAdaptorJson {
public:
    void adapt(Serialize::Json::FlatObject& document) override;
};

} // namespace Project
