#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 5: enumerated fields of transitions and effects are signed numbers, so their stored types follow.
class V5_EnumcastAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
