#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 7: an outline can be switched off, so every pen gets the flag `enabled`; a pen of width 0 is off.
class V7_PenEnableAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
