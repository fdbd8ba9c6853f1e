#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 15: a gradient with "retain" in its id keeps its colours when a preset is recoloured, so the solid white
/// one of the stock titles gets that word.
class V15_SvgRetainFeatureAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
