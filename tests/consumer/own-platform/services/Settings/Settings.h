#pragma once

#include <QString>

/// The editor's folders, which it finds itself: nothing sets them.
namespace Settings {

QString legacyPackageDeploymentPath();
QString aiModelsPath();
QString downloadableResourcesPath();

} // namespace Settings
