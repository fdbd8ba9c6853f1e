#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 25: a transition has a type and resources, so every one gets the type 0 and an empty list.
class V25_TransitionTypeResourceAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
