#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 5: enumerated fields of transitions and effects are signed numbers, so their stored types are "int32_t".
class V5_EnumcastAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
