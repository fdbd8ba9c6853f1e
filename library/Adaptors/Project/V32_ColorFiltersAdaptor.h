#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 32: each automatic colour correction is an effect of its own; before, one `Effect::AutoEnhance`
/// had a flag for each. `Effect::ManualEnhance` gets its final `uniqueId`.
class V32_ColorFiltersAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
