#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 53: clips can follow tracked motion, so every `Timeline::Object` gets an empty list of such links.
class V53_TrackingLinkAdaptor : public Bundle::TopArchiveStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
