#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 41: a cutaway is an `Effect::PictureInPicture` that covers the whole frame.
class V41_CutawayToPictureInPictureAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
