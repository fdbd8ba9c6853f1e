#include "batch/Content.h"

#include "Reader/Error.h"
#include "Reader/TextForm.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

namespace Batch {
namespace {

using std::string_view;

bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

void skipSpace(string_view& text) {
    while (!text.empty() && isSpace(text.front()))
        text.remove_prefix(1);
}

/// Removes the text up to the end mark; false where there is none.
bool skipPast(string_view& text, string_view end) {
    const auto place = text.find(end);
    text.remove_prefix(place == string_view::npos ? text.size() : place + end.size());
    return place != string_view::npos;
}

/// The name of the document element of XML; none where the text ends before it.
std::optional<string_view> documentElement(string_view text) {
    while (true) {
        skipSpace(text);
        if (text.starts_with("<?")) {
            if (!skipPast(text, "?>"))
                return std::nullopt;
        } else if (text.starts_with("<!--")) {
            if (!skipPast(text, "-->"))
                return std::nullopt;
        } else if (text.starts_with("<!")) {
            // Declarations in brackets may have a ">" of their own.
            const auto bracket = text.find('[');
            const auto end = text.find('>');
            if (bracket != string_view::npos && bracket < end && !skipPast(text, "]"))
                return std::nullopt;
            if (!skipPast(text, ">"))
                return std::nullopt;
        } else {
            break;
        }
    }
    if (!text.starts_with('<'))
        return text.empty() ? std::nullopt : std::optional(string_view());
    const auto end = text.find_first_of(" \t\r\n/>", 1);
    return end == string_view::npos ? std::nullopt : std::optional(text.substr(1, end - 1));
}

/// Reads the members of a JSON object without building it.
class MemberScanner {
public:
    explicit MemberScanner(string_view text) : m_text(text) {}

    Content content() {
        m_text.remove_prefix(1); // "{"
        while (true) {
            skipSpace(m_text);
            if (m_text.empty())
                return Content::Unclear;
            if (m_text.front() != '"')
                return Content::Other;
            const string_view key = readString();
            skipSpace(m_text);
            if (!m_text.empty() && m_text.front() != ':')
                return Content::Other;
            m_text.remove_prefix(m_text.empty() ? 0 : 1);
            skipSpace(m_text);
            if (key == "schemaVersion" || (key == "data" && m_text.starts_with('{')))
                return Content::Project;
            skipValue();
            skipSpace(m_text);
            if (m_text.empty())
                return Content::Unclear;
            if (m_text.front() != ',')
                return Content::Other;
            m_text.remove_prefix(1);
        }
    }

private:
    /// The text between quotes, with escapes as they are.
    string_view readString() {
        m_text.remove_prefix(1);
        std::size_t end = 0;
        while (end < m_text.size() && m_text[end] != '"')
            end += m_text[end] == '\\' ? 2 : 1;
        const string_view text = m_text.substr(0, end);
        m_text.remove_prefix(std::min(end + 1, m_text.size()));
        return text;
    }

    /// Everything up to the comma or the bracket behind a value.
    void skipValue() {
        int depth = 0;
        while (!m_text.empty()) {
            const char c = m_text.front();
            if (depth == 0 && (c == ',' || c == '}' || c == ']'))
                return;
            if (c == '"') {
                readString();
                continue;
            }
            depth += c == '{' || c == '[' ? 1 : c == '}' || c == ']' ? -1 : 0;
            m_text.remove_prefix(1);
        }
    }

    string_view m_text;
};

} // namespace

Content contentOf(const QByteArray& beginning) {
    if (beginning.isEmpty())
        return Content::Empty;
    const auto first = Reader::firstCharacter(beginning);
    if (!first)
        return Content::Empty; // nothing but white space
    const bool isText = *first == U'<' || *first == U'{';
    if (!isText)
        return Content::Other;
    QByteArray bytes = beginning;
    try {
        bytes = Reader::decode(beginning, {}).text;
    } catch (const Reader::Error&) {
        return Content::Unclear; // damaged UTF-16
    }
    string_view text(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    constexpr string_view byteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(byteOrderMark))
        text.remove_prefix(byteOrderMark.size());
    skipSpace(text);
    if (first == U'{')
        return MemberScanner(text).content();
    const auto name = documentElement(text);
    if (!name)
        return Content::Unclear;
    return *name == "Archive" ? Content::Project : Content::Other;
}

} // namespace Batch
