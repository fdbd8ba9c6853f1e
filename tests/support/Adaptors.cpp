#include "support/Adaptors.h"

#include "Adaptors/ImportDescriptionAdaptor.h"
#include "Adaptors/Project/CollectionItemPreviewUrlsAdaptor.h"
#include "Adaptors/Project/PortableLoadAdaptor.h"
#include "Adaptors/Project/PortableSaveAdaptor.h"
#include "Reader/Chain.h"

using nlohmann::json;

namespace Tests {
namespace {

QString locationIn(const json& setup) {
    return QString::fromStdString(setup.value("location", std::string()));
}

} // namespace

std::unique_ptr<Bundle::AbstractAdaptorXml> makeXmlAdaptor(const std::string& className, json&) {
    if (className == "ImportDescriptionAdaptor")
        return std::make_unique<ImportDescriptionAdaptor>();
    const Reader::Step* step = Reader::findStep(className);
    return step && step->hasXml() ? step->makeXml() : nullptr;
}

std::unique_ptr<Bundle::AbstractAdaptorJson> makeJsonAdaptor(const std::string& className, json& setup) {
    if (className == "CollectionItemPreviewUrlsAdaptor")
        return std::make_unique<Project::CollectionItemPreviewUrlsAdaptor>();
    if (className == "PortableLoadAdaptor")
        return std::make_unique<Project::PortableLoadAdaptor>(locationIn(setup));
    if (className == "PortableSaveAdaptor")
        return std::make_unique<Project::PortableSaveAdaptor>(locationIn(setup));
    const Reader::Step* step = Reader::findStep(className);
    return step && step->hasJson() ? step->makeJson() : nullptr;
}

} // namespace Tests
