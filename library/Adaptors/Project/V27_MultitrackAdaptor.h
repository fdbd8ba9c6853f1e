#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 27: tracks become objects, so every `Timeline::Object` gets six and its clips refer to them.
class V27_MultitrackAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
