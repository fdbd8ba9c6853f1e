#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 13: `Effect::PictureInPicture` describes its position by a `transform` in place of offsets and
/// scales, and has no fades any more.
class V13_PictureInPictureAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
