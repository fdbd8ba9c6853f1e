#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 35: a project has a user collection beside its timeline, so "Project::Content" is the new root.
class V35_UserCollectionAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
