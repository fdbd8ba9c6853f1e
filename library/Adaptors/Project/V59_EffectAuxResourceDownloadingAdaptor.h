#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 59: that resource can be remote, so every "Effect::Object" part gets where it lies and its size.
class V59_EffectAuxResourceDownloadingAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
