#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 55: volume normalization is an effect, so each clip that had it switched on gets an
/// `Effect::AudioNormalize` before its other effects.
class V55_AudioNormalizationEffectAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
