#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 24: a `File` has no composition any more, so it is removed with its markers and ranges.
class V24_CompositionRemoveAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
