#pragma once

#include "Adaptors/AbstractAdaptorJson.h"
#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 61: an effect can work on a part of its clip, so every effect gets a `processedRange`, which is
/// the whole clip.
class V61_EffectProcessedRangeAdaptor : public Bundle::XmlStep, public Bundle::AbstractAdaptorJson {
public:
    using XmlStep::adapt;
    void adapt(Serialize::Json::FlatObject& document) override;

protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
