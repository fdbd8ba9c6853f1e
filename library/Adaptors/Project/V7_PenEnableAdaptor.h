#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 7: a pen can be switched off, so every pen gets the flag `enabled`; a pen of width 0 is off.
class V7_PenEnableAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
