#pragma once

#include "Adaptors/AbstractAdaptorJson.h"
#include "Adaptors/AbstractAdaptorXml.h"

#include <memory>
#include <span>
#include <string_view>

namespace Reader {

/// The newest schema version that this chain leads to.
inline constexpr int currentVersion = 77;

/// The last schema version whose documents are XML archives; all later ones are JSON.
inline constexpr int lastXmlVersion = 62;

/// One row of the chain: what brings a document to schema version `number`.
struct Step {
    int number;
    std::string_view className; ///< without its namespace, Project
    std::string_view summary;   ///< one sentence for people
    /// Make the step in that form; null where it has no such form.
    std::unique_ptr<Bundle::AbstractAdaptorXml> (*makeXml)();
    std::unique_ptr<Bundle::AbstractAdaptorJson> (*makeJson)();

    bool hasXml() const { return makeXml != nullptr; }
    bool hasJson() const { return makeJson != nullptr; }
};

/// All steps in the order in which they run.
std::span<const Step> chain();

/// The step of that class name, with or without "Project::"; null for none.
const Step* findStep(std::string_view className);

} // namespace Reader
