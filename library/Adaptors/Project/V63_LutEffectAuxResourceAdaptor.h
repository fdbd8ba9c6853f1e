#pragma once

#include "Adaptors/AbstractAdaptorJson.h"

namespace Project {

/// Version 63: the cube of a LUT is its auxiliary resource, so `cubeResourceUuid` moves into `auxResource`.
class V63_LutEffectAuxResourceAdaptor : public Bundle::AbstractAdaptorJson {
public:
    void adapt(Serialize::Json::FlatObject& document) override;
};

} // namespace Project
