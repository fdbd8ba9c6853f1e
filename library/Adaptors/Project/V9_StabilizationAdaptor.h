#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 9: stabilizing creates a second file, so a clip stores the path of its source file in
/// `pathOriginal`.
class V9_StabilizationAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
