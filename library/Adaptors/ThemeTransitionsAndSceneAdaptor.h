#pragma once

#include "Adaptors/XmlStep.h"

/// Updates an older `Theme::Object`: it gets a list of transitions in place of one, and limits for the
/// duration of a scene. Runs on every archive before the steps, since themes have no schema version.
class ThemeTransitionsAndSceneAdaptor : public Bundle::XmlStep {
protected:
    void convert(Archive::Internal::ArchiveEditor& archive) override;
};
