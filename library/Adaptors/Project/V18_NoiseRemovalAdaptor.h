#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 18: a noise suppression of fixed strength replaces each noise reduction and each noise gate.
class V18_NoiseRemovalAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
