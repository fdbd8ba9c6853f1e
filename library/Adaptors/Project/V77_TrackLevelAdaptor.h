#pragma once

#include "Adaptors/AbstractAdaptorJson.h"

namespace Project {

/// Version 77: a track has no levels, so the clips of each level move to a track of their own.
class V77_TrackLevelAdaptor : public Bundle::AbstractAdaptorJson {
public:
    void adapt(Serialize::Json::FlatObject& document) override;
};

} // namespace Project
