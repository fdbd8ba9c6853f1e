#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 48: a path has one form, so an old `portablePath` becomes the value and `portable` tells of it.
class V48_OldPortablePathAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
