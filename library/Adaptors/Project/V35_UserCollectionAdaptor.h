#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 35: a project has a user collection beside its timeline, so "Project::Content" is the new root.
class V35_UserCollectionAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
