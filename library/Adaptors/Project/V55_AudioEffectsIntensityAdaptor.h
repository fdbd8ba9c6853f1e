#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 55: phone and pitch effects have an intensity to set, so their presets are split into it and
/// the rest.
class V55_AudioEffectsIntensityAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
