#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 53: clips can follow tracked motion, so every `Timeline::Object` gets an empty list of such links.
class V53_TrackingLinkAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
