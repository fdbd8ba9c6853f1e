#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 4: a clip is rotated by an effect, `Effect::Transpose`, and no longer by a field `angle`.
class V4_TransposeEffectAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
