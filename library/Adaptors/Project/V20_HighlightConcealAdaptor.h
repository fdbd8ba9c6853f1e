#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 20: a mask either highlights or conceals, so each `Effect::Mask` becomes an `Effect::MaskHighlight` or an
/// `Effect::MaskConceal` with a list of frames, which holds the old mask's rectangle as its one frame.
class V20_HighlightConcealAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
