#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 4: a clip is turned by an effect, `Effect::Transpose`, and no longer by an `angle` of its own.
class V4_TransposeEffectAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
