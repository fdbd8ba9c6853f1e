#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 9: stabilizing makes a second file, so a clip keeps the path of its source file in `pathOriginal`.
class V9_StabilizationAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
