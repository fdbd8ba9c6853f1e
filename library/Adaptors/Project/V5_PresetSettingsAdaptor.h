#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 5: a preset stores its settings itself, so each stock preset gets the values that its tag used to imply.
class V5_PresetSettingsAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
