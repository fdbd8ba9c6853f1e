#pragma once

#include "Adaptors/JsonStep.h"

namespace Project {

/// Runs on request only: sets `previewUrls`, which old files may lack, of every "Collection::Item" to an
/// empty list.
class CollectionItemPreviewUrlsAdaptor : public Bundle::JsonStep {
protected:
    void convert(Archive::Internal::FlatEditor& editor) override;
};

} // namespace Project
