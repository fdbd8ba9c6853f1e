#pragma once

#include "Adaptors/AbstractAdaptorJson.h"
#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 60: the objects of a collection are shown by their `description`, which is copied from the `tag`.
class V60_CollectionItemDescriptionAdaptor : public Bundle::XmlStep, public Bundle::AbstractAdaptorJson {
public:
    using XmlStep::adapt;
    void adapt(Serialize::Json::FlatObject& document) override;

protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
