#pragma once

#include <QString>

/// Folders of the installed editor. All are empty until they are set; set them before documents are read or
/// written. Not thread-safe: the values belong to the process.
namespace Settings {

QString legacyPackageDeploymentPath();
QString aiModelsPath();
QString downloadableResourcesPath();

void setLegacyPackageDeploymentPath(const QString& path);
void setAiModelsPath(const QString& path);
void setDownloadableResourcesPath(const QString& path);

} // namespace Settings
