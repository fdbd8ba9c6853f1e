#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 55: audio effects that had the `uniqueId` of their group are distinguished by it, so it becomes their `id`.
class V55_AudioEffectsGroupIdAdaptor : public Bundle::TopArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
