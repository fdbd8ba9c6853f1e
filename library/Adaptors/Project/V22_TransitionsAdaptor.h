#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 22: a transition takes half its length from each of the two clips around it, so the timings of the
/// primary track and of what is linked to it move, and every transition gets a `strategy`.
class V22_TransitionsAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
