#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 62: a collection item knows its download, so the remote url and size move to it.
class V62_CollectionItemPayloadAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
