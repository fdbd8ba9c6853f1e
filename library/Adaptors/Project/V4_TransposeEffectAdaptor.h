#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 4: a clip is turned by an effect, `Effect::Transpose`, and no longer by an `angle` of its own.
class V4_TransposeEffectAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
