#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 57: the noise gate is set by `intensity` like other effects; its old `range` counts down from 1.
class V57_NoiseGateEffectRangeAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
