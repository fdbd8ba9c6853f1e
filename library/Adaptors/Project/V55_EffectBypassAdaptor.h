#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 55: an effect can be switched off without removing it, so every `Effect::Object` gets `bypass`.
class V55_EffectBypassAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
