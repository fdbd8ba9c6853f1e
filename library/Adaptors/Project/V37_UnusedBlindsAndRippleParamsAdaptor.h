#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 37: nothing uses the `ampMode` of ripple and the `mode` of blinds any more, so they go.
class V37_UnusedBlindsAndRippleParamsAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
