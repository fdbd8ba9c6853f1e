#pragma once

#include "Adaptors/AbstractAdaptorJson.h"

namespace Project {

/// Version 64: an overlay item lists the resources that it uses, so each gets an empty `resourcesInfo`.
class V64_OverlayResourceInfoAdaptor : public Bundle::AbstractAdaptorJson {
public:
    void adapt(Serialize::Json::FlatObject& document) override;
};

} // namespace Project
