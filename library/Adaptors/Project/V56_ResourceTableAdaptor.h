#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 56: a project has a table of its resources, so "Project::Content" refers to a new, empty one.
class V56_ResourceTableAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
