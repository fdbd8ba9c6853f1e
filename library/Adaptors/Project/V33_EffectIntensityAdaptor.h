#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 33: every effect has an `intensity`. In eight effects it replaces a strength of their own.
class V33_EffectIntensityAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
