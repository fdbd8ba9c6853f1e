#pragma once

#include "Adaptors/AbstractAdaptorJson.h"

namespace Project {

/// Version 72: the type of a track is a bit value, so the old track numbers are replaced.
class V72_TrackTypeAdaptor : public Bundle::AbstractAdaptorJson {
public:
    void adapt(Serialize::Json::FlatObject& document) override;
};

} // namespace Project
