#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 14: `Effect::Crop` describes the part of the frame that it shows by a `transform` in place of a
/// `rect`.
class V14_CropEffectAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
