#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 55: phone and pitch effects have an adjustable intensity, which each of their presets sets
/// together with its other values.
class V55_AudioEffectsIntensityAdaptor : public Bundle::TopArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
