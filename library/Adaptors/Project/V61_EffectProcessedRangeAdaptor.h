#pragma once

#include "Adaptors/AbstractAdaptorJson.h"
#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 61: an effect can work on a part of its clip, so every effect gets a `processedRange`: the whole.
class V61_EffectProcessedRangeAdaptor : public Bundle::AbstractAdaptorXml,
                                        public Bundle::AbstractAdaptorJson {
public:
    void adapt(QDomDocument& document) override;
    void adapt(Serialize::Json::FlatObject& document) override;
};

} // namespace Project
