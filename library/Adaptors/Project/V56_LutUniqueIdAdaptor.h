#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 56: a LUT is told by its cube, so the generic LUT gets `cubeResourceUuid` as its `uniqueId`.
class V56_LutUniqueIdAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
