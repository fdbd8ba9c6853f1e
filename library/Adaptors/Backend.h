#pragma once

namespace Bundle {

/// The two forms of a document in memory.
enum class Backend {
    Xml = 0,  ///< the XML archive, a QDomDocument
    Json = 1, ///< the flat JSON document, a Serialize::Json::FlatObject
};

} // namespace Bundle
