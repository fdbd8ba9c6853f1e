#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 25: a transition has a type and resources, so every one gets the type 0 and an empty list.
class V25_TransitionTypeResourceAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
