#pragma once

#include "Adaptors/JsonStep.h"

namespace Project {

/// Version 64: an overlay preset can have fonts of its own, so each gets an empty `fontsDir`.
class V64_OverlayPayloadFontDirAdaptor : public Bundle::JsonStep {
protected:
    void convert(Archive::Internal::FlatEditor& editor) override;
};

} // namespace Project
