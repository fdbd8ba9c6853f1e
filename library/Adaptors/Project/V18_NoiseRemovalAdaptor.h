#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 18: one noise suppression, of fixed strength, stands for the old noise reduction and noise gate.
class V18_NoiseRemovalAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
