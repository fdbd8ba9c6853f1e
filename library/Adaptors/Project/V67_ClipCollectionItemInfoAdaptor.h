#pragma once

#include "Adaptors/AbstractAdaptorJson.h"

namespace Project {

/// Version 67: a clip names the collection item that it was created from, so every "Timeline::Clip" gets such
/// an info.
class V67_ClipCollectionItemInfoAdaptor : public Bundle::AbstractAdaptorJson {
public:
    void adapt(Serialize::Json::FlatObject& document) override;
};

} // namespace Project
