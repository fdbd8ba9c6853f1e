#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 14: `Effect::Crop` holds what it cuts out as a `transform` in place of a `rect`.
class V14_CropEffectAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
