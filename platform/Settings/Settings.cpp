#include "Settings/Settings.h"

namespace Settings {
namespace {

struct Paths {
    QString legacyPackageDeployment;
    QString aiModels;
    QString downloadableResources;
};

Paths& paths() {
    static Paths instance;
    return instance;
}

} // namespace

QString legacyPackageDeploymentPath() {
    return paths().legacyPackageDeployment;
}

QString aiModelsPath() {
    return paths().aiModels;
}

QString downloadableResourcesPath() {
    return paths().downloadableResources;
}

void setLegacyPackageDeploymentPath(const QString& path) {
    paths().legacyPackageDeployment = path;
}

void setAiModelsPath(const QString& path) {
    paths().aiModels = path;
}

void setDownloadableResourcesPath(const QString& path) {
    paths().downloadableResources = path;
}

} // namespace Settings
