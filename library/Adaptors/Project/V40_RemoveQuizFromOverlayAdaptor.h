#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 40: a quiz is no overlay any more, so the quiz presets that clips use become `Quiz::Preset` objects.
class V40_RemoveQuizFromOverlayAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
