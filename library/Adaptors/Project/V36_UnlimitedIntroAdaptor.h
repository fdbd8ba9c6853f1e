#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 36: clips of the types 8 and 16 have a length of their own, so their `unlimitedDuration` is switched off.
class V36_UnlimitedIntroAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
