#pragma once

#include <nlohmann/json.hpp>

#include <set>

class QDomDocument;

namespace Archive::Internal {
class ArchiveEditor;
}

namespace Util {

/// Converts an XML archive into one nested JSON value with the keys "data" (the project's root object) and
/// "version" ("1.0"). Each object is written in full at its first reference and as a link at later ones. The
/// stack does not grow with the depth of the document. Throws nothing itself. Threads: several instances may
/// run in different threads, on different documents.
class XmlToJsonAdaptor {
public:
    /// Does not change the document.
    nlohmann::json adapt(const QDomDocument& document);

    /// The same, but embedded objects that have the id of a root object get the id 0, and such ids are added to
    /// `sharedIds`: in an archive a reference means a root object, in JSON it would mean the first object of that
    /// id.
    nlohmann::json adapt(Archive::Internal::ArchiveEditor& archive, std::set<unsigned long long>& sharedIds);
};

} // namespace Util
