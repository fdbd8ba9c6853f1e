#pragma once

#include "Adaptors/AbstractAdaptorJson.h"
#include "Adaptors/AbstractAdaptorXml.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <string>

namespace Tests {

/// Makes any adaptor of the library by its class name, numbered or not. `setup` is what its constructor needs:
/// "location" for the path adaptors; "sideFiles" {name: text} for the reader of side files, where all other files
/// are empty; "failWrites" for their writer, true or a list of names. What that writes ends up in "writtenFiles"
/// of `setup`, which must outlive the adaptor. Null for a class without that form.
std::unique_ptr<Bundle::AbstractAdaptorXml> makeXmlAdaptor(const std::string& className,
                                                           nlohmann::json& setup);
std::unique_ptr<Bundle::AbstractAdaptorJson> makeJsonAdaptor(const std::string& className,
                                                             nlohmann::json& setup);

} // namespace Tests
