#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 18: one noise suppression, of fixed strength, replaces the old noise reduction and noise gate.
class V18_NoiseRemovalAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
