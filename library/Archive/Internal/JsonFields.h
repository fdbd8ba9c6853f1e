#pragma once

// Reading numbers and lists from fields of class objects, for the JSON steps. Reading never creates a missing
// key.

#include <nlohmann/json.hpp>

#include <string>

namespace Archive::Internal {

/// The number as a 64-bit integer; a fraction is cut off. Throws the type error 302 "type must be number, but
/// is ..." for anything else, also for a boolean.
long long toInteger(const nlohmann::json& value);

/// The number as a 32-bit integer; greater integers wrap. Quirk: here a boolean counts as a number. Throws as
/// above.
int toInt32(const nlohmann::json& value);

/// The entries of a list; none if the key is missing or has a value of another type.
const nlohmann::json::array_t& entriesOf(const nlohmann::json& object, const std::string& key);

/// The list itself, for changing; null if the key is missing or has a value of another type.
nlohmann::json::array_t* listOf(nlohmann::json& object, const std::string& key);

} // namespace Archive::Internal
