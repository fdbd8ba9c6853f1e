#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 27: tracks become objects, so every `Timeline::Object` gets six and its clips refer to them.
class V27_MultitrackAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
