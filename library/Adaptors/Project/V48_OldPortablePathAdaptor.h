#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 48: a path has one form, so an old `portablePath` becomes the value, and the project's `portable` says
/// whether there was one.
class V48_OldPortablePathAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
