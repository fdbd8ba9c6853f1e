#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 49: an import knows its remote size, so every "Import::Object" gets -1, the unknown one.
class V49_ImportRemoteSizeAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
