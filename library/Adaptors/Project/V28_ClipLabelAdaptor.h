#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 28: a clip can carry labels, so every `Timeline::Clip` gets an empty list of them.
class V28_ClipLabelAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
