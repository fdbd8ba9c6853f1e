#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 37: nothing uses the `ampMode` of ripple and the `mode` of blinds any more, so they are removed.
class V37_UnusedBlindsAndRippleParamsAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
