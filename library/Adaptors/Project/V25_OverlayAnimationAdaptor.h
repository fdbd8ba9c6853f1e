#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 25: overlay items can move, so each gets an `envelope` without movement.
class V25_OverlayAnimationAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
