#pragma once

#include "Serialize/Json/FlatObject.h"
#include "Stored/V14/Transform.h"

#include <string_view>

namespace Archive {

/// Adds a copy of `object` under a new id. The copy is shallow: both refer to the same objects. Throws
/// std::invalid_argument for an object without a class name.
nlohmann::json* cloneObject(Serialize::Json::FlatObject& document, nlohmann::json* object);

/// The same for the object of that id. Gives null if `document` has no such object.
nlohmann::json* cloneObject(Serialize::Json::FlatObject& document, unsigned long long id);

/// Adds a "Types::Transform" object and gives a reference to it.
nlohmann::json createRef(Serialize::Json::FlatObject& document, const Stored::V14::Transform& transform);

/// Moves the value of the key `oldName` to `newName` and overwrites the value that `newName` had. If both
/// names are equal, the value is removed. A value that is no JSON object, or lacks `oldName`, is not changed.
void renameChild(nlohmann::json& object, std::string_view oldName, std::string_view newName);

} // namespace Archive
