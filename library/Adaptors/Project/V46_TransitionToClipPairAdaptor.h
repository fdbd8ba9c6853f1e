#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 46: a timeline lists its transitions, each with the clips before and after it. Before, a clip of
/// the primary track named the transition that follows it.
class V46_TransitionToClipPairAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
