#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 57: content and resource table stand side by side in a new root, "Project::PersistentObject".
class V57_ProjectPersistentObjectAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
