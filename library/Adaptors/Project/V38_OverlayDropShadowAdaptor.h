#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 38: overlay items can cast a shadow, so each gets a `dropShadow` that is off.
class V38_OverlayDropShadowAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
