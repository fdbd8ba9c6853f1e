#pragma once

#include <QDomDocument>

#include <nlohmann/json.hpp>

#include <set>

namespace Util {

/// Turns an XML archive into one nested JSON value with the keys "data" (the project's root object) and
/// "version" ("1.0"). Each object stands in full at its first reference and as a link at later ones. Needs no
/// more stack for a deep document than for a flat one.
///
/// Threads: conversions of different documents do not disturb each other.
class XmlToJsonAdaptor {
public:
    nlohmann::json adapt(const QDomDocument& document);

    /// The same, for a document that nobody needs any more: objects are removed from the tree and freed as soon as
    /// they are converted, so that the two forms are never in memory side by side. Other handles of the tree see what
    /// is left of it, which is undefined.
    /// References mean root objects, and in JSON the object that comes first would get them. So embedded objects
    /// that have an id of a root object get the id 0; such ids are added to `idsTaken`.
    nlohmann::json consume(QDomDocument document, std::set<unsigned long long>& idsTaken);
};

} // namespace Util
