#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 36: clips of the types 8 and 16 have a length of their own, so their `unlimitedDuration` is switched off.
class V36_UnlimitedIntroAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
