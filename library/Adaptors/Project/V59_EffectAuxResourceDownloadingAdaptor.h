#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 59: that resource can be remote, so every "Effect::Object" part gets its location, its URL and its size.
class V59_EffectAuxResourceDownloadingAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
