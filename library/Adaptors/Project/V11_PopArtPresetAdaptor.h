#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 11: the number of tiles of an `Effect::PopArt` is its `preset`, no longer its `tag` alone.
class V11_PopArtPresetAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
