#include "Terminal.h"

#include <unistd.h>

#include <cstdlib>

namespace Terminal {
namespace {

std::string coloured(std::string_view text, const char* code) {
    const char* noColour = std::getenv("NO_COLOR");
    const bool isColoured = isatty(STDERR_FILENO) != 0 && !(noColour && *noColour);
    return isColoured ? std::string(code).append(text).append("\x1b[0m") : std::string(text);
}

} // namespace

std::string red(std::string_view text) {
    return coloured(text, "\x1b[31m");
}

std::string yellow(std::string_view text) {
    return coloured(text, "\x1b[33m");
}

} // namespace Terminal
