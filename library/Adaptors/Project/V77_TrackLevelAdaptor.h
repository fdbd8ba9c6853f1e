#pragma once

#include "Adaptors/AbstractAdaptorJson.h"

namespace Project {

/// Version 77: a track has no levels, so a clip that lay on a level gets a track of its own.
class V77_TrackLevelAdaptor : public Bundle::AbstractAdaptorJson {
public:
    void adapt(Serialize::Json::FlatObject& document) override;
};

} // namespace Project
