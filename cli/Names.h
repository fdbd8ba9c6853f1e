#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Names that people type, and what they may have meant.
namespace Names {

/// The candidate that is most like the word, capitals aside; empty where none is.
std::string nearest(std::string_view word, const std::vector<std::string>& candidates);

/// The class name of a step for what people type: the class name itself, with or without "Project::", or a beginning
/// that only one step has. "V2" is the step of version 2, and not a beginning of those from 20 on. Throws
/// Messages::Failure.
std::string stepFor(const std::string& text);

} // namespace Names
