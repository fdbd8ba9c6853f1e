#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 55: audio effects that shared the `uniqueId` of their group get an identity of their own, their `id`.
class V55_AudioEffectsGroupIdAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
