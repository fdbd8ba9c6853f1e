#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 13: `Effect::PictureInPicture` holds its place as a `transform` in place of offsets and scales,
/// and fades no more.
class V13_PictureInPictureAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
