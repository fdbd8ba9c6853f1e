#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 50: the texts of overlay items are stored as base64, under `encodedText` instead of `text`.
class V50_OverlayItemTextEncode : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
