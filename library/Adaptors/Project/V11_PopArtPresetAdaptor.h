#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 11: the number of tiles of an `Effect::PopArt` is stored in its `preset`, and no longer only
/// implied by its `tag`.
class V11_PopArtPresetAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
