#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 57: the noise gate is set by `intensity` like other effects, which is 1 minus the old `range`.
class V57_NoiseGateEffectRangeAdaptor : public Bundle::TopArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
