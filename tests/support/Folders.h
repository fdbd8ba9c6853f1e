#pragma once

#include "Settings/Settings.h"

namespace Tests {

/// The folders of the editor for portable paths; an empty one is not set.
inline void setFolders(const QString& packages, const QString& models, const QString& downloads) {
    Settings::setLegacyPackageDeploymentPath(packages);
    Settings::setAiModelsPath(models);
    Settings::setDownloadableResourcesPath(downloads);
}

} // namespace Tests
