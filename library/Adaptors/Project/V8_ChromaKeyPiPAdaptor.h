#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 8: chroma key no longer cuts the picture out by itself, so a clip with a chroma key also gets an
/// `Effect::Cutaway`.
class V8_ChromaKeyPiPAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
