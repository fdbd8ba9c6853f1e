#pragma once

#include "Adaptors/JsonStep.h"

namespace Project {

/// Version 77: a track has no levels, so the clips of each level move to a track of their own.
class V77_TrackLevelAdaptor : public Bundle::JsonStep {
protected:
    void convert(Archive::Internal::FlatEditor& editor) override;
};

} // namespace Project
