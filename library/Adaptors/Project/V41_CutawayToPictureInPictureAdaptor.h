#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 41: a cutaway is an `Effect::PictureInPicture` that covers the whole frame.
class V41_CutawayToPictureInPictureAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
