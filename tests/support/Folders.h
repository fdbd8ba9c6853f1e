#pragma once

#include "Settings/Settings.h"

namespace Tests {

/// The folders of the editor that portable paths are marked by; an empty one is none.
inline void setFolders(const QString& packages, const QString& models, const QString& downloads) {
    Settings::setLegacyPackageDeploymentPath(packages);
    Settings::setAiModelsPath(models);
    Settings::setDownloadableResourcesPath(downloads);
}

} // namespace Tests
