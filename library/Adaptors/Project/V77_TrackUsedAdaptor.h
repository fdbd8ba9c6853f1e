#pragma once

#include "Adaptors/JsonStep.h"

namespace Project {

/// Version 77: a timeline lists the tracks that are in use, so tracks that are unused and empty are removed
/// from `tracks`. Two misspelt fade fields of clip timings get their right names.
class V77_TrackUsedAdaptor : public Bundle::JsonStep {
protected:
    void convert(Archive::Internal::FlatEditor& editor) override;
};

} // namespace Project
