#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 54: a transition has a volume, so every one gets the full 100.
class V54_TransitionVolumeAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
