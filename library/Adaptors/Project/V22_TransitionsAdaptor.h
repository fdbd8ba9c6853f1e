#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 22: a transition takes half its length from each of its two clips. So the timings of the primary
/// track and of the clips that are linked to it change, and every transition gets a `strategy`.
class V22_TransitionsAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
