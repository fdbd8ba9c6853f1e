#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 16: cropping and zooming is no effect any more; a clip that had `Effect::Zoom` or `Effect::PanAndZoom`
/// owns a `TransformationEnvelope` of timed matrices, which its `cropEnvelope` refers to.
class V16_PanZoomAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
