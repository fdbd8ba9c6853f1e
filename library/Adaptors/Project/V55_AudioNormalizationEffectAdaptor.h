#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 55: volume normalization is an effect, so each clip that had it switched on gets an
/// `Effect::AudioNormalize` before its other effects.
class V55_AudioNormalizationEffectAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
