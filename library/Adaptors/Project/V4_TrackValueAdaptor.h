#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 4: track numbers gain gaps for tracks in between, so the tracks 1 to 5 of clips become 16 to 96.
class V4_TrackValueAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
