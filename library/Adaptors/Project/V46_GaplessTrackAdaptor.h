#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 46: a track says whether it is kept without gaps; only the primary track is.
class V46_GaplessTrackAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
