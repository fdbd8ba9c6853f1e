#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 47: a transition has a default duration, so every `Transition::Object` gets 2000 milliseconds.
class V47_TransitionDurationAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
