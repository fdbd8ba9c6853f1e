#pragma once

#include "Serialize/Json/FlatObject.h"
#include "Stored/V14/Transform.h"

#include <string_view>

namespace Archive {

/// A copy of `object` under a fresh id. Shallow: both refer to the same objects. Throws std::invalid_argument
/// for an object without a class name.
nlohmann::json* cloneObject(Serialize::Json::FlatObject& document, nlohmann::json* object);

/// The same by id; null where `document` has no such object.
nlohmann::json* cloneObject(Serialize::Json::FlatObject& document, unsigned long long id);

/// Makes a "Types::Transform" object and gives the reference to it.
nlohmann::json createRef(Serialize::Json::FlatObject& document, const Stored::V14::Transform& transform);

/// Moves the value of one key to another, over what stands there. Equal names lose the value. Anything but an
/// object with the old key stays as it is.
void renameChild(nlohmann::json& object, std::string_view oldName, std::string_view newName);

} // namespace Archive
