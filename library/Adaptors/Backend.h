#pragma once

namespace Bundle {

/// The models that a document can be held in.
enum class Backend {
    Xml = 0,  ///< the XML archive, a QDomDocument
    Json = 1, ///< the flat JSON document, a Serialize::Json::FlatObject
};

} // namespace Bundle
