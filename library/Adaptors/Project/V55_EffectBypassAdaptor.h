#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 55: an effect can be switched off without removing it, so every `Effect::Object` gets `bypass`.
class V55_EffectBypassAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
