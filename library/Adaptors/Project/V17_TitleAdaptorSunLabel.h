#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 17: the stock title "SunLabel" has its two items in the other order, so their indices are exchanged.
class V17_TitleAdaptorSunLabel : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
