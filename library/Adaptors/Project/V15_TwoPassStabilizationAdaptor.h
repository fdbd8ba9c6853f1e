#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 15: stabilization has settings, so a clip's two paths move to a `Stabilization::Object`.
class V15_TwoPassStabilizationAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
