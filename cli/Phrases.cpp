#include "Phrases.h"

#include "Terminal.h"

#include <algorithm>

namespace Phrases {
namespace {

/// The number of bytes of the first `most` characters; all where there are no more.
std::size_t sizeOfFirst(std::size_t most, std::string_view text) {
    std::size_t at = 0;
    for (; at < text.size(); ++at) {
        const bool startsCharacter = (static_cast<unsigned char>(text[at]) & 0xc0U) != 0x80;
        if (startsCharacter && most-- == 0)
            break;
    }
    return at;
}

} // namespace

std::string plural(std::size_t count, const std::string& noun) {
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

std::string timeText(long long milliseconds) {
    const auto part = [](unsigned long long number, int digits) {
        const std::string text = std::to_string(number);
        return std::string(static_cast<std::size_t>(std::max(0, digits - int(text.size()))), '0') + text;
    };
    const auto bits = static_cast<unsigned long long>(milliseconds);
    const unsigned long long size = milliseconds < 0 ? 0 - bits : bits;
    return (milliseconds < 0 ? "-" : "") + part(size / 3600000, 1) + ':' + part(size / 60000 % 60, 2) + ':' +
           part(size / 1000 % 60, 2) + '.' + part(size % 1000, 3);
}

std::string classText(const std::string& className) {
    return className.empty() ? "(no class)" : Terminal::escaped(className);
}

std::string shortText(std::string_view text, std::size_t most) {
    const std::size_t size = sizeOfFirst(most, text);
    return Terminal::escaped(text.substr(0, size)) + (size < text.size() ? "..." : "");
}

std::string inQuotes(std::string_view text, std::size_t most) {
    return '"' + shortText(text, most) + '"';
}

} // namespace Phrases
