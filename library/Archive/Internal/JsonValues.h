#pragma once

// For this project's own use: what the JSON value does by recursion. Here depth costs memory, not stack.

#include <nlohmann/json.hpp>

namespace Archive::Internal {

/// A copy of the value with all that it holds.
nlohmann::json copied(const nlohmann::json& value);

/// What `left == right` gives.
bool areEqual(const nlohmann::json& left, const nlohmann::json& right);

} // namespace Archive::Internal
