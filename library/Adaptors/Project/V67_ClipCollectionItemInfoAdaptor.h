#pragma once

#include "Adaptors/JsonStep.h"

namespace Project {

/// Version 67: a clip names the collection item that it was created from, so every "Timeline::Clip" gets such
/// an info.
class V67_ClipCollectionItemInfoAdaptor : public Bundle::JsonStep {
protected:
    void convert(Archive::Internal::FlatEditor& editor) override;
};

} // namespace Project
