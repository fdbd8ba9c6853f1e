#pragma once

#include "Adaptors/AbstractAdaptorJson.h"
#include "Adaptors/AbstractAdaptorXml.h"

#include <nlohmann/json.hpp>

#include <memory>
#include <string>

namespace Tests {

/// Creates an adaptor of the library by its class name. Null if the class has no such form. `setup` has the
/// values for its constructor: "location" for the path adaptors; "sideFiles" {name: text} for the reader of
/// side files, where all other files are empty; "failWrites" for their writer, true or a list of names.
/// Written files are added to "writtenFiles" of `setup`, which must outlive the adaptor.
std::unique_ptr<Bundle::AbstractAdaptorXml> makeXmlAdaptor(const std::string& className,
                                                           nlohmann::json& setup);
std::unique_ptr<Bundle::AbstractAdaptorJson> makeJsonAdaptor(const std::string& className,
                                                             nlohmann::json& setup);

} // namespace Tests
