#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 57: content and resource table stand side by side in a new root, "Project::PersistentObject".
class V57_ProjectPersistentObjectAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
