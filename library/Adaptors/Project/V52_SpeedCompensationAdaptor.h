#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 52: a clip can compensate a changed speed, so every `Timeline::ClipTiming` gets the flag, off.
class V52_SpeedCompensationAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
