#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 26: a `Video` no longer chooses how it is resized, so its `resizeMode` is removed.
class V26_VideoResizeMethodAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
