#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 25: overlay items can move, so each gets an `envelope` that leaves it where it is.
class V25_OverlayAnimationAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
