#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 58: an effect can use one more resource, so every "Effect::Object" part gets `auxResource`.
class V58_EffectAuxResourceAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
