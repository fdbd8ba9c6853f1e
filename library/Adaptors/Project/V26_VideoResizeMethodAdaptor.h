#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 26: how a `Video` is resized is no longer its own choice, so its `resizeMode` goes.
class V26_VideoResizeMethodAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
