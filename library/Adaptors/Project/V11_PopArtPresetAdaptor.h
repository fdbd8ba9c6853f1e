#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 11: the number of tiles of an `Effect::PopArt` is its `preset`, no longer its `tag` alone.
class V11_PopArtPresetAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
