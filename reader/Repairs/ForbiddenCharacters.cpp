#include "Reader/Error.h"
#include "Reader/TextForm.h"
#include "Repairs/Makers.h"

#include <QByteArray>

#include <array>
#include <charconv>
#include <cstdio>
#include <optional>
#include <string_view>

namespace Repairs {
namespace {

constexpr char32_t greatestCharacter = 0x10FFFF;

bool isForbidden(char32_t c) {
    const bool isControl = c < 0x20 && c != '\t' && c != '\n' && c != '\r';
    const bool isSurrogate = c >= 0xD800 && c <= 0xDFFF;
    return isControl || isSurrogate || c == 0xFFFE || c == 0xFFFF || c > greatestCharacter;
}

std::string nameOf(char32_t c) {
    std::array<char, 16> name{};
    std::snprintf(name.data(), name.size(), "U+%04X", static_cast<unsigned>(c));
    return name.data();
}

/// A forbidden character in a text.
struct Found {
    std::size_t size; ///< in bytes
    char32_t character;
    bool isReference; ///< written as "&#1;"
};

/// A reference to a forbidden character, by its number.
std::optional<Found> referenceAt(std::string_view text) {
    if (!text.starts_with("&#"))
        return std::nullopt;
    const bool isHexadecimal = text.size() > 2 && text[2] == 'x';
    const std::size_t first = isHexadecimal ? 3 : 2;
    const std::size_t end = text.substr(0, first + 12).find(';');
    if (end == std::string_view::npos || end == first)
        return std::nullopt;
    std::uint64_t number = 0;
    const auto [stop, error] =
        std::from_chars(text.data() + first, text.data() + end, number, isHexadecimal ? 16 : 10);
    if (error != std::errc() || stop != text.data() + end)
        return std::nullopt;
    const auto character = static_cast<char32_t>(std::min<std::uint64_t>(number, greatestCharacter + 1));
    if (!isForbidden(character))
        return std::nullopt;
    return Found{end + 1, character, true};
}

/// A forbidden character at the beginning of a text. A NUL byte is none here: it is a mark of a damaged disk.
std::optional<Found> forbiddenAt(std::string_view text, bool isUtf8) {
    const auto c = static_cast<unsigned char>(text.front());
    if (c != 0 && isForbidden(c))
        return Found{1, c, false};
    if (c == '&')
        return referenceAt(text);
    if (isUtf8 && (text.starts_with("\xEF\xBF\xBE") || text.starts_with("\xEF\xBF\xBF")))
        return Found{3, text[2] == '\xBE' ? char32_t(0xFFFE) : char32_t(0xFFFF), false};
    return std::nullopt;
}

/// Whether the declaration of an archive names UTF-8 or no encoding.
bool isUtf8(std::string_view text) {
    const auto start = text.find("<?xml");
    const std::string_view declaration =
        text.substr(0, start == std::string_view::npos ? 0 : text.find("?>", start));
    if (declaration.find("encoding") == std::string_view::npos)
        return true;
    return QByteArray(declaration.data(), static_cast<int>(declaration.size())).toLower().contains("utf-8");
}

/// Replaces the characters that XML forbids by U+FFFD, and writes control characters in JSON texts as escapes.
class ForbiddenCharacters : public TextRepair {
public:
    QByteArray repair(const QByteArray& bytes, Changes& changes) override {
        const char32_t first = Reader::firstCharacter(bytes).value_or(U' ');
        if (first == U'<')
            return repairXml(bytes, changes);
        if ((first == U'{' || first == U'[') && Reader::encodingOf(bytes) == Reader::Encoding::Bytes)
            return repairJson(bytes, changes);
        return bytes;
    }

private:
    static QByteArray repairXml(const QByteArray& bytes, Changes& changes) {
        const Reader::Encoding encoding = Reader::encodingOf(bytes);
        QByteArray decoded = bytes;
        if (encoding != Reader::Encoding::Bytes) {
            try {
                decoded = Reader::decode(bytes, {}).text;
            } catch (const Reader::Error&) {
                return bytes; // the parser says what is wrong
            }
        }
        const std::string_view text(decoded.constData(), static_cast<std::size_t>(decoded.size()));
        const bool hasUtf8 = isUtf8(text.substr(0, 1024));
        const QByteArray repaired = replace(
            text, changes, [&](std::string_view rest) { return forbiddenAt(rest, hasUtf8); },
            [&](const Found& found) {
                return found.isReference || !hasUtf8 ? QByteArray("&#xFFFD;") : QByteArray("\xEF\xBF\xBD");
            });
        changes.describe(counted(changes.count(), "character") + " that XML forbids " +
                         (changes.count() == 1 ? "was" : "were") + " replaced by U+FFFD");
        return changes.count() == 0 ? bytes : repaired;
    }

    static QByteArray repairJson(const QByteArray& bytes, Changes& changes) {
        const std::string_view text(bytes.constData(), static_cast<std::size_t>(bytes.size()));
        bool isInString = false;
        bool isEscaped = false;
        const auto find = [&](std::string_view rest) -> std::optional<Found> {
            const auto c = static_cast<unsigned char>(rest.front());
            if (!isInString) {
                isInString = c == '"';
                return std::nullopt;
            }
            if (c != 0 && c < 0x20)
                return Found{1, c, false};
            isInString = isEscaped || c != '"';
            isEscaped = !isEscaped && c == '\\';
            return std::nullopt;
        };
        const QByteArray repaired = replace(text, changes, find, [](const Found& found) {
            return "\\u" +
                   QByteArray::number(static_cast<unsigned>(found.character), 16).rightJustified(4, '0');
        });
        changes.describe(counted(changes.count(), "control character") + " in texts " +
                         (changes.count() == 1 ? "was" : "were") + " written as JSON writes them");
        return changes.count() == 0 ? bytes : repaired;
    }

    template <class Find, class Replacement>
    static QByteArray replace(std::string_view text, Changes& changes, Find find, Replacement replacement) {
        QByteArray result;
        std::size_t copied = 0;
        for (std::size_t place = 0; place < text.size();) {
            const auto found = find(text.substr(place));
            if (!found) {
                ++place;
                continue;
            }
            result.append(text.data() + copied, static_cast<int>(place - copied));
            changes.note(text, place, nameOf(found->character));
            result += replacement(*found);
            place += found->size;
            copied = place;
        }
        return result.append(text.data() + copied, static_cast<int>(text.size() - copied));
    }
};

} // namespace

std::unique_ptr<TextRepair> makeForbiddenCharacters() {
    return std::make_unique<ForbiddenCharacters>();
}

} // namespace Repairs
