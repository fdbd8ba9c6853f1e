#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 17: the stock title "SunLabel" has its two items in the other order, so their indices are exchanged.
class V17_TitleAdaptorSunLabel : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
