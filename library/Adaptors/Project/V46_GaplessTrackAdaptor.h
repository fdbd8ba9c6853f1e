#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 46: a track says whether it is kept without gaps; only the primary track is.
class V46_GaplessTrackAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
