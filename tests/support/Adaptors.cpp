#include "support/Adaptors.h"

#include "Reader/Chain.h"
#include "Reader/Unnumbered.h"

#include <algorithm>

using nlohmann::json;

namespace Tests {
namespace {

bool failsToWrite(const json& setup, const std::string& name) {
    const json fails = setup.value("failWrites", json(false));
    return fails.is_array() ? std::find(fails.begin(), fails.end(), name) != fails.end() : fails.get<bool>();
}

Reader::Surroundings surroundingsIn(json& setup) {
    return {QString::fromStdString(setup.value("location", std::string())),
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
    const Reader::Unnumbered* unnumbered = Reader::findUnnumbered(className);
    if (unnumbered && unnumbered->makeXml)
        return unnumbered->makeXml(surroundingsIn(setup));
    const Reader::Step* step = Reader::findStep(className);
    return step && step->hasXml() ? step->makeXml() : nullptr;
}

std::unique_ptr<Bundle::AbstractAdaptorJson> makeJsonAdaptor(const std::string& className, json& setup) {
    const Reader::Unnumbered* unnumbered = Reader::findUnnumbered(className);
    if (unnumbered && unnumbered->makeJson)
        return unnumbered->makeJson(surroundingsIn(setup));
    const Reader::Step* step = Reader::findStep(className);
    return step && step->hasJson() ? step->makeJson() : nullptr;
}

} // namespace Tests
