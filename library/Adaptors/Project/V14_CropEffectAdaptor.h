#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 14: `Effect::Crop` holds what it cuts out as a `transform` in place of a `rect`.
class V14_CropEffectAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
