#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 5: a preset stores its settings itself, so each stock preset gets the values that its tag used to imply.
class V5_PresetSettingsAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
