#pragma once

#include "Adaptors/AbstractAdaptorJson.h"

namespace Project {

/// Version 71: an import has a `blendingMode` and a `transform`, so every `Import::Object` gets the defaults.
class V71_ImportBlendAndTransformAdaptor : public Bundle::AbstractAdaptorJson {
public:
    void adapt(Serialize::Json::FlatObject& document) override;
};

} // namespace Project
