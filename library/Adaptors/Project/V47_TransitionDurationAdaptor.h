#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 47: a transition has a length to begin with, so every `Transition::Object` gets 2000.
class V47_TransitionDurationAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
