#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 51: the highlight and the conceal effect of a clip are one `Effect::Mask` with two lists of frames, and
/// each frame can follow what is tracked in the clip.
class V51_MaskEffectAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
