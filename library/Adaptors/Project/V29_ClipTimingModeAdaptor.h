#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 29: the timing of a clip has a mode, so every `Timeline::ClipTiming` gets the mode 0.
class V29_ClipTimingModeAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
