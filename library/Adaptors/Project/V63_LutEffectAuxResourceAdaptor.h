#pragma once

#include "Adaptors/JsonStep.h"

namespace Project {

/// Version 63: the cube of a LUT is its auxiliary resource, so `cubeResourceUuid` moves into `auxResource`.
class V63_LutEffectAuxResourceAdaptor : public Bundle::JsonStep {
protected:
    void convert(Archive::Internal::FlatEditor& editor) override;
};

} // namespace Project
