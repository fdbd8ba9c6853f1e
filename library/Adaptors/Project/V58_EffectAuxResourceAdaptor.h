#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 58: an effect can use one more resource, so every "Effect::Object" part gets `auxResource`.
class V58_EffectAuxResourceAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
