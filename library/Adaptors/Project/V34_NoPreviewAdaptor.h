#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 34: previews are no longer saved, so preview objects, their records and the `preview` of clips are
/// removed.
class V34_NoPreviewAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
