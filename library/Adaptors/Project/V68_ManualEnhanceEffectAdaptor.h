#pragma once

#include "Adaptors/JsonStep.h"

namespace Project {

/// Version 68: the parameters of `Effect::ManualEnhance` range from -1 to 1; before, each had a range of its
/// own.
class V68_ManualEnhanceEffectAdaptor : public Bundle::JsonStep {
protected:
    void convert(Archive::Internal::FlatEditor& editor) override;
};

} // namespace Project
