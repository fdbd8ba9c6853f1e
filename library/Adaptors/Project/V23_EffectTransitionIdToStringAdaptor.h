#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 23: effects and transitions are resources, so their small numbers become resource identifiers.
class V23_EffectTransitionIdToStringAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
