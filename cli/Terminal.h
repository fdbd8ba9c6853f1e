#pragma once

#include <string>
#include <string_view>

/// Colours for standard error: on a terminal only, and never where NO_COLOR is set.
namespace Terminal {

std::string red(std::string_view text);
std::string yellow(std::string_view text);

} // namespace Terminal
