#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 42: `Effect::SideBySide` holds the positions of its two pictures as matrices, in addition to its
/// `mode`.
class V42_SideBySideTransformAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
