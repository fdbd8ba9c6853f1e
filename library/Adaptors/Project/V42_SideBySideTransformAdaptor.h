#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 42: `Effect::SideBySide` holds the places of its two pictures as matrices besides its `mode`.
class V42_SideBySideTransformAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
