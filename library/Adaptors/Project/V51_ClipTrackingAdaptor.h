#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 51: a clip can follow motion, so every `Timeline::Clip` gets an empty list of motion trackings.
class V51_ClipTrackingAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
