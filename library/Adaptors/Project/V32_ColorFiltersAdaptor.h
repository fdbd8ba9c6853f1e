#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 32: each automatic colour correction is an effect of its own, where one `Effect::AutoEnhance` held a flag for
/// each; `Effect::ManualEnhance` gets its lasting `uniqueId`.
class V32_ColorFiltersAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
