#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 33: every effect has an `intensity`, and eight effects that had a strength of their own give it
/// up for that.
class V33_EffectIntensityAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
