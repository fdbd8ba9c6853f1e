#pragma once

#include "Adaptors/JsonStep.h"
#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 60: the objects of a collection are shown by their `description`, which is copied from the `tag`.
class V60_CollectionItemDescriptionAdaptor : public Bundle::XmlStep, public Bundle::JsonStep {
public:
    using JsonStep::adapt;
    using XmlStep::adapt;

protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
    void convert(Archive::Internal::FlatEditor& editor) override;
};

} // namespace Project
