#include "support/Adaptors.h"

#include "Reader/AdaptorTable.h"
#include "Settings/Settings.h"

#include <algorithm>

using nlohmann::json;

namespace Tests {
namespace {

bool failsToWrite(const json& setup, const std::string& name) {
    const json fails = setup.value("failWrites", json(false));
    return fails.is_array() ? std::find(fails.begin(), fails.end(), name) != fails.end() : fails.get<bool>();
}

Reader::AdaptorContext contextIn(json& setup) {
    return {QString::fromStdString(setup.value("location", std::string())),
            {Settings::legacyPackageDeploymentPath(), Settings::aiModelsPath(),
             Settings::downloadableResourcesPath()},
            [files = setup.value("sideFiles", json::object())](const QString& name) {
                return QByteArray::fromStdString(files.value(name.toStdString(), std::string()));
            },
            [&setup](const QString& name, const QByteArray& content) {
                if (failsToWrite(setup, name.toStdString()))
                    return false;
                setup["writtenFiles"][name.toStdString()] = content.toStdString();
                return true;
            }};
}

} // namespace

std::unique_ptr<Bundle::AbstractAdaptorXml> makeXmlAdaptor(const std::string& className, json& setup) {
    const Reader::AdaptorRow* row = Reader::findAdaptor(className);
    return row && row->hasXml() ? row->makeXml(contextIn(setup)) : nullptr;
}

std::unique_ptr<Bundle::AbstractAdaptorJson> makeJsonAdaptor(const std::string& className, json& setup) {
    const Reader::AdaptorRow* row = Reader::findAdaptor(className);
    return row && row->hasJson() ? row->makeJson(contextIn(setup)) : nullptr;
}

} // namespace Tests
