#pragma once

// For this project's own use: what JSON steps share. Nothing here leaves a key behind that was only looked for.

#include "Serialize/Json/FlatObject.h"

#include <string>
#include <vector>

namespace Archive::Internal {

struct SelectedObject {
    unsigned long long id;
    nlohmann::json* object;
};

/// All objects of that class, in ascending id, so that what a step makes for them falls the same way each time.
std::vector<SelectedObject> selectObjects(Serialize::Json::FlatObject& document,
                                          const std::string& className);

/// The object of that id. Throws std::out_of_range "invalid map<K, T> key" where there is none.
nlohmann::json& objectAt(Serialize::Json::FlatObject& document, unsigned long long id);

/// The value of a key; a null value where `object` is no object or has no such key.
const nlohmann::json& memberOf(const nlohmann::json& object, const std::string& key);

} // namespace Archive::Internal
