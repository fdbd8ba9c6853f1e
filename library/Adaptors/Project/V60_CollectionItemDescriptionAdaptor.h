#pragma once

#include "Adaptors/AbstractAdaptorJson.h"
#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 60: what a collection holds is shown by its `description`, which is taken from the `tag`.
class V60_CollectionItemDescriptionAdaptor : public Bundle::AbstractAdaptorXml,
                                             public Bundle::AbstractAdaptorJson {
public:
    void adapt(QDomDocument& document) override;
    void adapt(Serialize::Json::FlatObject& document) override;
};

} // namespace Project
