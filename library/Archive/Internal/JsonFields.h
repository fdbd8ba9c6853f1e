#pragma once

// For this project's own use: reading fields of class objects. Nothing here leaves a key behind.

#include <nlohmann/json.hpp>

#include <string>

namespace Archive::Internal {

/// The number in 64 bits, a floating one without its fraction. Throws the type error 302 "type must be number, but
/// is ..." for anything else, a boolean too.
long long toInteger(const nlohmann::json& value);

/// The number in 32 bits: greater integers wrap, and here a boolean is a number. Throws as above.
int toInt32(const nlohmann::json& value);

/// The entries of a list; none where the key is missing or holds anything else.
const nlohmann::json::array_t& entriesOf(const nlohmann::json& object, const std::string& key);

/// The list itself, to be changed; null where the key is missing or holds anything else.
nlohmann::json::array_t* listOf(nlohmann::json& object, const std::string& key);

} // namespace Archive::Internal
