#pragma once

#include "Adaptors/JsonStep.h"

namespace Project {

/// Version 72: the type of a track is a bit value, so the old track numbers are replaced.
class V72_TrackTypeAdaptor : public Bundle::JsonStep {
protected:
    void convert(Archive::Internal::FlatEditor& editor) override;
};

} // namespace Project
