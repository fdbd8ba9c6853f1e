#pragma once

#include "Adaptors/XmlStep.h"

/// Brings an older `Theme::Object` up to date: a list of transitions instead of one, and limits for the duration of a
/// scene.
class ThemeTransitionsAndSceneAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};
