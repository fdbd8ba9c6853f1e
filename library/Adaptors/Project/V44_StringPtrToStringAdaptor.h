#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 44: strings are never null, so each "StringPtr" becomes a "String", which later readers know.
class V44_StringPtrToStringAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
