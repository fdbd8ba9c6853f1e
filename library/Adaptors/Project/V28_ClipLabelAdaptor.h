#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 28: a clip can carry labels, so every `Timeline::Clip` gets an empty list of them.
class V28_ClipLabelAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
