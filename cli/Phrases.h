#pragma once

#include <nlohmann/json.hpp>

#include <cstddef>
#include <string>
#include <string_view>

/// Small pieces of the texts for people. All are fit for a terminal.
namespace Phrases {

/// "1 clip", "2 clips"
std::string plural(std::size_t count, const std::string& noun);

/// "0:01:02.345"
std::string timeText(long long milliseconds);

/// The name of a class; "(no class)" for an empty one.
std::string classText(const std::string& className);

/// A text of a document on one line: escaped, and cut off with "..." where it is longer than `most` characters.
std::string shortText(std::string_view text, std::size_t most = 60);

/// The same in quotes.
std::string inQuotes(std::string_view text, std::size_t most = 60);

/// `clip "Beach" at 0:00:39.000`
std::string clipText(std::string_view name, long long start);

/// "Blur" for "Effect::Blur", with the name of a preset behind it: `Blur "Soft"`.
std::string effectText(const std::string& className, const std::string& name);

/// A value of a field: texts in quotes, objects by class and name, "none" for null.
std::string valueText(const nlohmann::json& value);

} // namespace Phrases
