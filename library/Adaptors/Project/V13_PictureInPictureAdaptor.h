#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 13: `Effect::PictureInPicture` holds its place as a `transform` in place of offsets and scales,
/// and fades no more.
class V13_PictureInPictureAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
