#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 56: a LUT effect is identified by its cube, so the generic LUT gets `cubeResourceUuid` as its `uniqueId`.
class V56_LutUniqueIdAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
