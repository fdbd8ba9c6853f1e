#pragma once

#include <QDomDocument>

#include <nlohmann/json.hpp>

#include <string>

namespace Tests {

/// The first difference between two documents, as a sentence; empty if there is none. Attributes have no
/// order, children have one, white space between elements does not count.
std::string difference(const QDomNode& expected, const QDomNode& actual);

/// The same for JSON values. Integers and floating numbers differ; signed and unsigned integers do not.
std::string difference(const nlohmann::json& expected, const nlohmann::json& actual);

} // namespace Tests
