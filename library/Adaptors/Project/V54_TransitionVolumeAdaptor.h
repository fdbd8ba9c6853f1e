#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 54: a transition has a volume, so every one gets the full 100.
class V54_TransitionVolumeAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
