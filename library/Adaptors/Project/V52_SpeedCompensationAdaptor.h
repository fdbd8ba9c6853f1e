#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 52: a clip can make up for a changed speed, so every `Timeline::ClipTiming` gets the flag, off.
class V52_SpeedCompensationAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
