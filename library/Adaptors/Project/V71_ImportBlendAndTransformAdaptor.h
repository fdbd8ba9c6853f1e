#pragma once

#include "Adaptors/JsonStep.h"

namespace Project {

/// Version 71: an import has a `blendingMode` and a `transform`, so every `Import::Object` gets the defaults.
class V71_ImportBlendAndTransformAdaptor : public Bundle::JsonStep {
protected:
    void convert(Archive::Internal::FlatEditor& editor) override;
};

} // namespace Project
