#pragma once

#include "Adaptors/AbstractAdaptorJson.h"
#include "Adaptors/AbstractAdaptorXml.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <string>

namespace Tests {

/// Makes any adaptor of the library by its class name, numbered or not. `setup` is what its constructor needs:
/// "location" for the path adaptors. Null for a class without that form.
std::unique_ptr<Bundle::AbstractAdaptorXml> makeXmlAdaptor(const std::string& className,
                                                           nlohmann::json& setup);
std::unique_ptr<Bundle::AbstractAdaptorJson> makeJsonAdaptor(const std::string& className,
                                                             nlohmann::json& setup);

} // namespace Tests
