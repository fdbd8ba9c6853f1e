#pragma once

#include "Adaptors/AbstractAdaptorJson.h"

namespace Project {

/// Version 67: a clip knows the collection item it came from, so every "Timeline::Clip" gets an info.
class V67_ClipCollectionItemInfoAdaptor : public Bundle::AbstractAdaptorJson {
public:
    void adapt(Serialize::Json::FlatObject& document) override;
};

} // namespace Project
