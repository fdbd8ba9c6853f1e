#pragma once

// Selecting and looking up objects and members of the flat document. A lookup never creates a missing key.

#include "Serialize/Json/FlatObject.h"

#include <string>
#include <vector>

namespace Archive::Internal {

struct SelectedObject {
    unsigned long long id;
    nlohmann::json* object;
};

/// All objects of that class, by ascending id. Searches the whole document; steps ask their FlatEditor instead.
std::vector<SelectedObject> selectObjects(Serialize::Json::FlatObject& document,
                                          const std::string& className);

/// The object of that id. Throws std::out_of_range "invalid map<K, T> key" if there is none.
nlohmann::json& objectAt(Serialize::Json::FlatObject& document, unsigned long long id);

/// The "@meta" of an object; null if it has none or `value` is no object.
const nlohmann::json* metaOf(const nlohmann::json& value);

/// The value of a key; a null value if `object` is no JSON object or lacks the key.
const nlohmann::json& memberOf(const nlohmann::json& object, const std::string& key);

} // namespace Archive::Internal
