#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 21: transformations have no aspect flag any more; it is removed, also from picture-in-picture and crop.
class V21_KeepAspectAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
