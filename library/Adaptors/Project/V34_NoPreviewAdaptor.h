#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 34: previews are no longer saved, so preview objects, their records and the `preview` of clips go.
class V34_NoPreviewAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
