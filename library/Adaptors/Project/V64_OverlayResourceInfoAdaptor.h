#pragma once

#include "Adaptors/JsonStep.h"

namespace Project {

/// Version 64: an overlay item lists the resources that it uses, so each gets an empty `resourcesInfo`.
class V64_OverlayResourceInfoAdaptor : public Bundle::JsonStep {
protected:
    void convert(Archive::Internal::FlatEditor& editor) override;
};

} // namespace Project
