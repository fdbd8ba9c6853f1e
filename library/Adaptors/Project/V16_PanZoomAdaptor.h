#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 16: cropping and zooming is no longer an effect. A clip that had `Effect::Zoom` or
/// `Effect::PanAndZoom` gets a `TransformationEnvelope`, matrices over time, to which its `cropEnvelope`
/// refers.
class V16_PanZoomAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
