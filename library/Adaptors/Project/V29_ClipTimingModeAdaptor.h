#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 29: the timing of a clip has a mode, so every `Timeline::ClipTiming` gets the mode 0.
class V29_ClipTimingModeAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
