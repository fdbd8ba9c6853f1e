#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 24: a `File` has no composition any more; the composition goes with its markers and ranges.
class V24_CompositionRemoveAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
