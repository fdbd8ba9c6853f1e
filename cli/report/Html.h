#pragma once

#include <nlohmann/json.hpp>

#include <cstddef>
#include <string>
#include <string_view>

/// Pages that need nothing else. All that a page shows of documents, files and errors goes through escaped(), limited()
/// or json().
namespace Html {

/// Escapes a text for an element or for an attribute in quotes, on one line. Characters that would change the
/// direction of text, control characters and bytes that are no UTF-8 are written as escapes, as on a terminal.
std::string escaped(std::string_view text);

/// The same of no more than `most` characters; what is longer ends with "… (1,048,576 characters)".
std::string limited(std::string_view text, std::size_t most);

/// The same with nothing but "…" behind what is cut off: for places with little space.
std::string shortened(std::string_view text, std::size_t most);

/// What shortened() shows, not yet escaped for HTML: for json().
std::string visible(std::string_view text, std::size_t most);

/// A value for scripts, for an element `<script type="application/json">`: ASCII, and without any character that
/// would end that element.
std::string json(const nlohmann::ordered_json& value);

/// "1,048,576"
std::string number(std::size_t value);

/// The source that lets a Content-Security-Policy accept exactly this style or script: 'sha256-…'.
std::string policySource(std::string_view content);

struct Page {
    std::string title;  ///< not yet escaped
    std::string style;  ///< CSS
    std::string script; ///< JavaScript; empty for none
    std::string body;   ///< HTML
};

/// The page up to its body, which is left out, and so is the script.
std::string documentStart(const Page& page);

/// The whole page. Its policy forbids every request and everything inline but its own style and script.
std::string document(const Page& page);

} // namespace Html
