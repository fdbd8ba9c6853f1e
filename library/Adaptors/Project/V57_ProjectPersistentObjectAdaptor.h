#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 57: content and resource table are fields of a new root object, "Project::PersistentObject".
class V57_ProjectPersistentObjectAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
