#include "Exchange/Internal/Urls.h"

#include <algorithm>
#include <string_view>

namespace Reader::Exchange {
namespace {

bool isLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool isLetterOrDigit(char c) {
    return isLetter(c) || (c >= '0' && c <= '9');
}

/// Bytes other than `kept`, letters and digits as "%2F".
std::string encoded(std::string_view text, std::string_view kept) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string result;
    result.reserve(text.size());
    for (const char c : text) {
        if (isLetterOrDigit(c) || kept.find(c) != std::string_view::npos) {
            result += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        result += '%';
        result += digits[byte >> 4U];
        result += digits[byte & 15U];
    }
    return result;
}

/// What a path of a URL may have, and the slash between its parts.
std::string encodedPath(std::string_view path) {
    return encoded(path, "-._~!$&'()*+,;=:@/");
}

/// "media://beach.mp4", but not "C:\beach.mp4"
bool isUrl(std::string_view text) {
    const std::size_t colon = text.find("://");
    return colon != std::string_view::npos && colon > 1 && isLetter(text.front()) &&
           std::all_of(text.begin(), text.begin() + static_cast<long>(colon),
                       [](char c) { return isLetterOrDigit(c) || c == '+' || c == '-' || c == '.'; });
}

} // namespace

bool hasFolderMarker(const std::string& path) {
    return path.starts_with('#');
}

std::string urlOf(const std::string& path) {
    if (isUrl(path))
        return encoded(path, "-._~!$&'()*+,;=:@/?#[]%");
    const bool hasDrive =
        path.size() > 2 && isLetter(path[0]) && path[1] == ':' && (path[2] == '/' || path[2] == '\\');
    const bool isShare = path.starts_with("\\\\");
    if (hasDrive || isShare) {
        std::string slashes = path;
        std::replace(slashes.begin(), slashes.end(), '\\', '/');
        return (hasDrive ? "file:///" : "file:") + encodedPath(slashes);
    }
    if (path.starts_with('/'))
        return "file://" + encodedPath(path);
    // The first part of a relative path must not look like the scheme of a URL.
    const bool looksLikeUrl = path.find(':') < path.find('/');
    return (looksLikeUrl ? "./" : "") + encodedPath(path);
}

} // namespace Reader::Exchange
