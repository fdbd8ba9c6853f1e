#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 15: stabilization has settings, so a clip's two paths move to a `Stabilization::Object`.
class V15_TwoPassStabilizationAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
