#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 21: transformations know no aspect flag any more; it is dropped, also from picture-in-picture and crop.
class V21_KeepAspectAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
