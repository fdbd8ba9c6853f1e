#include "support/Adaptors.h"

#include "Adaptors/OverlayFileContentReadAdaptor.h"
#include "Adaptors/OverlayFileContentWriteAdaptor.h"
#include "Adaptors/Project/PortableLoadAdaptor.h"
#include "Adaptors/Project/PortableSaveAdaptor.h"
#include "Adaptors/ThemeTransitionsAndSceneAdaptor.h"
#include "Reader/Chain.h"

#include <algorithm>

using nlohmann::json;

namespace Tests {
namespace {

QString locationIn(const json& setup) {
    return QString::fromStdString(setup.value("location", std::string()));
}

std::unique_ptr<OverlayFileContentReadAdaptor> sideFileReader(const json& setup) {
    return std::make_unique<OverlayFileContentReadAdaptor>(
        [files = setup.value("sideFiles", json::object())](const QString& name) {
            return QByteArray::fromStdString(files.value(name.toStdString(), std::string()));
        });
}

bool failsToWrite(const json& setup, const std::string& name) {
    const json fails = setup.value("failWrites", json(false));
    return fails.is_array() ? std::find(fails.begin(), fails.end(), name) != fails.end() : fails.get<bool>();
}

std::unique_ptr<OverlayFileContentWriteAdaptor> sideFileWriter(json& setup) {
    return std::make_unique<OverlayFileContentWriteAdaptor>(
        [&setup](const QString& name, const QByteArray& content) {
            if (failsToWrite(setup, name.toStdString()))
                return false;
            setup["writtenFiles"][name.toStdString()] = content.toStdString();
            return true;
        });
}

} // namespace

std::unique_ptr<Bundle::AbstractAdaptorXml> makeXmlAdaptor(const std::string& className, json& setup) {
    if (className == "OverlayFileContentReadAdaptor")
        return sideFileReader(setup);
    if (className == "ThemeTransitionsAndSceneAdaptor")
        return std::make_unique<ThemeTransitionsAndSceneAdaptor>();
    const Reader::Step* step = Reader::findStep(className);
    return step && step->hasXml() ? step->makeXml() : nullptr;
}

std::unique_ptr<Bundle::AbstractAdaptorJson> makeJsonAdaptor(const std::string& className, json& setup) {
    if (className == "OverlayFileContentReadAdaptor")
        return sideFileReader(setup);
    if (className == "OverlayFileContentWriteAdaptor")
        return sideFileWriter(setup);
    if (className == "PortableLoadAdaptor")
        return std::make_unique<Project::PortableLoadAdaptor>(locationIn(setup));
    if (className == "PortableSaveAdaptor")
        return std::make_unique<Project::PortableSaveAdaptor>(locationIn(setup));
    const Reader::Step* step = Reader::findStep(className);
    return step && step->hasJson() ? step->makeJson() : nullptr;
}

} // namespace Tests
