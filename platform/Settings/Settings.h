#pragma once

#include <QString>

/// Folders of the installed editor. All are empty until set; set them before documents are read or written.
namespace Settings {

QString legacyPackageDeploymentPath();
QString aiModelsPath();
QString downloadableResourcesPath();

void setLegacyPackageDeploymentPath(const QString& path);
void setAiModelsPath(const QString& path);
void setDownloadableResourcesPath(const QString& path);

} // namespace Settings
