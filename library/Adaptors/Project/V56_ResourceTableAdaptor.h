#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 56: a project has a table of its resources, so "Project::Content" refers to a new, empty one.
class V56_ResourceTableAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
