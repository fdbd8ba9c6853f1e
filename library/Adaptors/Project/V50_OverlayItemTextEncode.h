#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 50: the texts of overlay items are stored as base64, under `encodedText` instead of `text`.
class V50_OverlayItemTextEncode : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
