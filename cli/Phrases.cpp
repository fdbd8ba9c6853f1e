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

/// What valueText() cuts off. Values of documents are nested only some levels when they come here.
std::string wholeText(const nlohmann::json& value) {
    if (value.is_null())
        return "none";
    if (value.is_string())
        return inQuotes(value.get_ref<const std::string&>());
    if (!value.is_structured())
        return value.dump();
    if (value.is_object() && value.contains("class") && value["class"].is_string()) {
        const bool hasName = value.contains("name") && value["name"].is_string();
        return classText(value["class"].get<std::string>()) +
               (hasName ? ' ' + inQuotes(value["name"].get_ref<const std::string&>()) : "");
    }
    std::string text;
    for (const auto& [key, part] : value.items())
        text +=
            (text.empty() ? "" : ", ") + (value.is_object() ? shortText(key) + ": " : "") + wholeText(part);
    return value.is_object() ? '{' + text + '}' : '[' + text + ']';
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

std::string clipText(std::string_view name, long long start) {
    return (name.empty() ? std::string("a clip without a name") : "clip " + inQuotes(name)) + " at " +
           timeText(start);
}

std::string effectText(const std::string& className, const std::string& name) {
    const std::size_t colons = className.rfind("::");
    const std::string kind = colons == std::string::npos ? className : className.substr(colons + 2);
    const std::string text = kind.empty() ? "(no class)" : shortText(kind);
    return name.empty() || name == kind ? text : text + ' ' + inQuotes(name);
}

std::string valueText(const nlohmann::json& value) {
    constexpr std::size_t longest = 200;
    const std::string text = wholeText(value);
    // Escaped already, and cut off between two characters at most.
    return text.size() > longest ? text.substr(0, sizeOfFirst(longest, text)) + "..." : text;
}

std::string shortText(std::string_view text, std::size_t most) {
    const std::size_t size = sizeOfFirst(most, text);
    return Terminal::escaped(text.substr(0, size)) + (size < text.size() ? "..." : "");
}

std::string inQuotes(std::string_view text, std::size_t most) {
    return '"' + shortText(text, most) + '"';
}

} // namespace Phrases
