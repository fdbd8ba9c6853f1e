#pragma once

#include <nlohmann/json.hpp>

#include <set>

class QDomDocument;

namespace Util {

/// Turns an XML archive into one nested JSON value with the keys "data" (the project's root object) and
/// "version" ("1.0"). Each object stands in full at its first reference and as a link at later ones. Needs no
/// more stack for a deep document than for a flat one.
class XmlToJsonAdaptor {
public:
    nlohmann::json adapt(const QDomDocument& document);

    /// The same, for a document that nobody needs any more: objects are removed from it and freed as soon as they are
    /// converted, so that the two forms don't stand in memory side by side. What it holds afterwards is left open.
    /// References mean root objects, and in JSON the object that is met first would get them. So embedded objects
    /// that have an id of a root object get the id 0; such ids are added to `idsTaken`.
    nlohmann::json consume(const QDomDocument& document, std::set<unsigned long long>& idsTaken);
};

} // namespace Util
