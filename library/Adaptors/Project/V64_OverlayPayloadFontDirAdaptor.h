#pragma once

#include "Adaptors/AbstractAdaptorJson.h"

namespace Project {

/// Version 64: an overlay preset can have fonts of its own, so each gets an empty `fontsDir`.
class V64_OverlayPayloadFontDirAdaptor : public Bundle::AbstractAdaptorJson {
public:
    void adapt(Serialize::Json::FlatObject& document) override;
};

} // namespace Project
