#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 38: overlay items can cast a shadow, so each gets a `dropShadow` that is off.
class V38_OverlayDropShadowAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
