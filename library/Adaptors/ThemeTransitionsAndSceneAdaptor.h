#pragma once

#include "Adaptors/AbstractAdaptorXml.h"

/// Brings an older `Theme::Object` up to date: a list of transitions instead of one, and bounds for the length of
/// a scene.
class ThemeTransitionsAndSceneAdaptor : public Bundle::AbstractAdaptorXml {
public:
    void adapt(QDomDocument& document) override;
};
