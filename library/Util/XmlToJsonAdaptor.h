#pragma once

#include <nlohmann/json.hpp>

#include <set>

class QDomDocument;

namespace Archive::Internal {
class ArchiveEditor;
}

namespace Util {

/// Turns an XML archive into one nested JSON value with the keys "data" (the project's root object) and
/// "version" ("1.0"). Each object stands in full at its first reference and as a link at later ones. Needs no
/// more stack for a deep document than for a flat one. Throws nothing of its own. Several objects of this class may work in
/// several threads at once, on different documents.
class XmlToJsonAdaptor {
public:
    /// Does not change the document.
    nlohmann::json adapt(const QDomDocument& document);

    /// The same, for a document that is not needed any more: objects are removed from it and freed as soon as they are
    /// converted, so that the two forms are not in memory side by side. The content of the document is unspecified
    /// afterwards. References mean root objects, and in JSON the object that comes first would get them. So embedded
    /// objects that have the id of a root object get the id 0; such ids are added to `sharedIds`.
    nlohmann::json consume(Archive::Internal::ArchiveEditor archive, std::set<unsigned long long>& sharedIds);
};

} // namespace Util
