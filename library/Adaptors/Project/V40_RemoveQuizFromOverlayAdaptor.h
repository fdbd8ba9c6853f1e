#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 40: a quiz is no longer an overlay, so the quiz presets that clips use become `Quiz::Preset`
/// objects.
class V40_RemoveQuizFromOverlayAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
