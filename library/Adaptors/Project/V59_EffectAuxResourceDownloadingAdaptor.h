#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 59: the auxiliary resource of an effect can be remote, so every "Effect::Object" part gets the location, the
/// URL and the size of one.
class V59_EffectAuxResourceDownloadingAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
