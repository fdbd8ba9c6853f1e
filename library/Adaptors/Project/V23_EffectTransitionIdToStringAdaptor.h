#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 23: effects and transitions are resources, so their small numbers become resource identifiers.
class V23_EffectTransitionIdToStringAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
