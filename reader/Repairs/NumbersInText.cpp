#include "Reader/TextForm.h"
#include "Repairs/Makers.h"

#include <cmath>
#include <cstdlib>
#include <string>
#include <string_view>

namespace Repairs {
namespace {

constexpr const char* greatestNumber = "1.7976931348623157e308";

bool isPartOfToken(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '+' ||
           c == '-' || c == '.';
}

/// Names of numbers that are not finite, as several languages write them.
bool isName(std::string_view token) {
    if (token.starts_with('-') || token.starts_with('+'))
        token.remove_prefix(1);
    constexpr std::string_view names[] = {"NaN", "nan", "Infinity", "infinity", "Inf", "inf"};
    for (const std::string_view name : names) {
        if (token == name)
            return true;
    }
    return false;
}

/// What is written in place of a token; empty for the token itself.
std::string replacementFor(std::string_view token) {
    if (isName(token))
        return "0"; // as archives write an infinity
    const bool isNumber = token.find_first_not_of("0123456789+-.eE") == std::string_view::npos &&
                          token.find_first_of("0123456789") != std::string_view::npos;
    if (!isNumber || std::isfinite(std::strtod(std::string(token).c_str(), nullptr)))
        return {};
    return (token.front() == '-' ? "-" : "") + std::string(greatestNumber);
}

/// Replaces numbers of a JSON text that are not finite, or are too large for a floating number.
class NumbersInText : public TextRepair {
public:
    QByteArray repair(const QByteArray& bytes, Changes& changes) override {
        const char32_t first = Reader::firstCharacter(bytes).value_or(U' ');
        if ((first != U'{' && first != U'[') || Reader::encodingOf(bytes) != Reader::Encoding::Bytes)
            return bytes;
        const std::string_view text(bytes.constData(), static_cast<std::size_t>(bytes.size()));
        QByteArray result;
        std::size_t copied = 0;
        for (std::size_t place = 0; place < text.size();) {
            if (text[place] == '"') {
                place = endOfString(text, place);
                continue;
            }
            std::size_t end = place;
            while (end < text.size() && isPartOfToken(text[end]))
                ++end;
            const std::string_view token = text.substr(place, end - place);
            if (const std::string replacement = token.empty() ? std::string() : replacementFor(token);
                !replacement.empty()) {
                changes.note(text, place, std::string(token.substr(0, 40)));
                result.append(text.data() + copied, static_cast<int>(place - copied));
                result.append(replacement.data(), static_cast<int>(replacement.size()));
                copied = end;
            }
            place = std::max(end, place + 1);
        }
        changes.describe(counted(changes.count(), "number") +
                         " that JSON can't hold became 0, or the greatest number of that sign");
        if (changes.count() == 0)
            return bytes;
        return result.append(text.data() + copied, static_cast<int>(text.size() - copied));
    }

private:
    /// The position behind the string that begins at `place`.
    static std::size_t endOfString(std::string_view text, std::size_t place) {
        for (++place; place < text.size() && text[place] != '"'; ++place) {
            if (text[place] == '\\')
                ++place;
        }
        return std::min(place + 1, text.size());
    }
};

} // namespace

std::unique_ptr<TextRepair> makeNumbersInText() {
    return std::make_unique<NumbersInText>();
}

} // namespace Repairs
