#pragma once

// Copying and comparing JSON values without recursion, for values that may be deeply nested: depth costs
// memory, not stack.

#include <nlohmann/json.hpp>

namespace Archive::Internal {

/// A deep copy of the value.
nlohmann::json copied(const nlohmann::json& value);

/// Gives the same result as `left == right`.
bool areEqual(const nlohmann::json& left, const nlohmann::json& right);

} // namespace Archive::Internal
