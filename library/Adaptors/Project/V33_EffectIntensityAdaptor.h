#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 33: every effect has an `intensity`. Eight effects that had a strength of their own give it up for that.
class V33_EffectIntensityAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
