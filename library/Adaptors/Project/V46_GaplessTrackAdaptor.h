#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 46: every track gets the flag `gapless`, which says that its clips have no gaps between them; it
/// is set for the primary track only.
class V46_GaplessTrackAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
