#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 18: equalizer and noise reduction became audio filters, which the base of their objects tells.
class V18_AudioEffectToFilterAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
