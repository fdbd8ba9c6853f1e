#include "Settings/Settings.h"

namespace Settings {

QString legacyPackageDeploymentPath() {
    return "/editor/packages";
}

QString aiModelsPath() {
    return "/editor/models";
}

QString downloadableResourcesPath() {
    return "/editor/downloads";
}

} // namespace Settings
