#pragma once

#include "Adaptors/XmlStep.h"

namespace Project {

/// Version 21: an overlay preset has a type and its items have features; the outline colour of an SVG item moves into
/// the SVG text.
class V21_PresetTypeAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};

} // namespace Project
