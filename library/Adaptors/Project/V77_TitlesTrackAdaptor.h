#pragma once

#include "Adaptors/JsonStep.h"

namespace Project {

/// Version 77: titles are no longer on the primary track, so they move to a titles track, which is created if
/// there is no free one.
class V77_TitlesTrackAdaptor : public Bundle::JsonStep {
protected:
    void convert(Archive::Internal::FlatEditor& editor) override;
};

} // namespace Project
