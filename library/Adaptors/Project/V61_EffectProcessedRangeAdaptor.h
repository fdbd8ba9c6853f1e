#pragma once

#include "Adaptors/JsonStep.h"
#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 61: an effect can work on a part of its clip, so every effect gets a `processedRange`, which is
/// the whole clip.
class V61_EffectProcessedRangeAdaptor : public Bundle::XmlStep, public Bundle::JsonStep {
public:
    using JsonStep::adapt;
    using XmlStep::adapt;

protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
    void convert(Archive::Internal::FlatEditor& editor) override;
};

} // namespace Project
