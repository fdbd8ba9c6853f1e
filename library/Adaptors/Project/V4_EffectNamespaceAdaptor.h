#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 4: the classes of effects and transitions moved into namespaces, and so did their names in the
/// document.
class V4_EffectNamespaceAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
