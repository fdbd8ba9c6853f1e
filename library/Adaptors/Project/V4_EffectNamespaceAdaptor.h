#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 4: the classes of effects and transitions moved into namespaces, so objects, base parts and records have
/// their new names.
class V4_EffectNamespaceAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
