#pragma once

#include "Adaptors/AbstractAdaptorJson.h"

namespace Project {

/// Version 68: the parameters of `Effect::ManualEnhance` range from -1 to 1; before, each had a range of its
/// own.
class V68_ManualEnhanceEffectAdaptor : public Bundle::AbstractAdaptorJson {
public:
    void adapt(Serialize::Json::FlatObject& document) override;
};

} // namespace Project
