#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 4: track numbers have gaps for tracks in between, so the tracks 1 to 5 of clips become 16 to 96.
class V4_TrackValueAdaptor : public Bundle::ArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
