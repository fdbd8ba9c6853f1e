#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 55: `uniqueId` identifies an audio effect, so those that shared one per group get their own `id` as `uniqueId`.
class V55_AudioEffectsGroupIdAdaptor : public Bundle::TopArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
