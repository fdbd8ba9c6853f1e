#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

namespace Project {

/// Version 21: an overlay preset has a type and its items have features; the outline colour of an SVG item moves into
/// the SVG text.
class V21_PresetTypeAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};

} // namespace Project
