#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 12: a clip refers to its preview, so the image it named becomes a "StaticPreview::ImageObject".
class V12_ClipPreviewAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
