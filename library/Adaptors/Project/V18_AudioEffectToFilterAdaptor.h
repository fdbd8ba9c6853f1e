#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 18: equalizer and noise reduction became audio filters, so their base parts are "Effect::AudioFilter".
class V18_AudioEffectToFilterAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
