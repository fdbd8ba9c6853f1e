#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 35: a project has a user collection in addition to its timeline, so a new root,
/// "Project::Content", refers to both.
class V35_UserCollectionAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
