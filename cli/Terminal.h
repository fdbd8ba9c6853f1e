#pragma once

#include <string>
#include <string_view>

/// Colours for standard error, used only on a terminal and only if NO_COLOR is not set.
namespace Terminal {

std::string red(std::string_view text);
std::string yellow(std::string_view text);

} // namespace Terminal
