#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 55: audio effects that shared the `uniqueId` of their group are told apart by their own `id`.
class V55_AudioEffectsGroupIdAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
