#pragma once

#include "Adaptors/AbstractAdaptorJson.h"

namespace Project {

/// Version 77: titles no longer lie on the primary track, so they move to a titles track, which is made where
/// none can take them.
class V77_TitlesTrackAdaptor : public Bundle::AbstractAdaptorJson {
public:
    void adapt(Serialize::Json::FlatObject& document) override;
};

} // namespace Project
