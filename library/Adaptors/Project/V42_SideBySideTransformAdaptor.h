#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 42: `Effect::SideBySide` holds the places of its two pictures as matrices besides its `mode`.
class V42_SideBySideTransformAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
