#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 51: a clip can follow motion, so every `Timeline::Clip` gets an empty list of motion trackings.
class V51_ClipTrackingAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
