#pragma once

#include <nlohmann/json.hpp>

#include <string>

/// A value as lines of JSON. Bytes that are no UTF-8, which libraries and file systems may give, become U+FFFD.
std::string printed(const nlohmann::ordered_json& value);
