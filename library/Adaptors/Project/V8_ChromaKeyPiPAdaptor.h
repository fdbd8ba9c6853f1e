#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 8: chroma key no longer cuts the picture out by itself, so a clip with one gets an
/// `Effect::Cutaway` besides.
class V8_ChromaKeyPiPAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
