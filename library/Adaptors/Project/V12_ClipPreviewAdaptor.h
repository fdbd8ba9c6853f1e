#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 12: a clip refers to its preview, so the image it named becomes a "StaticPreview::ImageObject".
class V12_ClipPreviewAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
