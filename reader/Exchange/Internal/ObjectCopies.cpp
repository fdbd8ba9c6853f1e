#include "Exchange/Internal/ObjectCopies.h"

#include "Reader/JsonText.h"
#include "Reader/WideNumbers.h"

#include <QString>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <string_view>
#include <vector>

using nlohmann::json;
using Json = nlohmann::ordered_json;

namespace Reader::Exchange {
namespace {

/// More levels than any project has. Readers of JSON are recursive.
constexpr int mostLevels = 64;

constexpr int exactDigits = 15;

struct Decimal {
    int digits;   ///< of the mantissa
    int exponent; ///< of ten, behind all digits
};

/// The shortest text of a number as digits and exponent.
Decimal decimalOf(double number) {
    std::array<char, 64> buffer{};
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, std::chars_format::scientific)
            .ptr;
    const std::string_view text(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
    const std::size_t e = text.find('e');
    const auto digits = static_cast<int>(std::count_if(text.begin(), text.begin() + static_cast<long>(e),
                                                       [](char c) { return c >= '0' && c <= '9'; }));
    int exponent = 0;
    const std::size_t sign = text[e + 1] == '+' ? 2 : 1;
    std::from_chars(text.data() + e + sign, text.data() + text.size(), exponent);
    return {digits, exponent - (digits - 1)};
}

/// Readers know whole numbers of 64 bits with a sign.
Json wholeNumber(std::uint64_t number) {
    const bool isTooLarge = number > std::uint64_t(std::numeric_limits<std::int64_t>::max());
    return isTooLarge ? Json(std::to_string(number)) : Json(number);
}

Json reference(unsigned long long id) {
    return {{"@meta_reference", wholeNumber(id)}};
}

bool isPlain(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c > 0; });
}

/// Quirk: readers make objects of their own of values that have such a key, and refuse the file if they can't.
bool isKeyOfReaders(std::string_view key) {
    const std::size_t letter = key.find_first_not_of('_');
    return letter != std::string_view::npos && key.substr(letter).starts_with("OTIO_");
}

} // namespace

bool isReadExactly(double number) {
    if (number == 0)
        return true;
    const Decimal decimal = decimalOf(number);
    constexpr int greatestExactPower = 22; // of ten
    return decimal.digits <= exactDigits && decimal.exponent >= -greatestExactPower &&
           std::abs(number) < 1e15;
}

double roundedForReaders(double number) {
    if (isReadExactly(number))
        return number;
    std::array<char, 64> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number,
                                   std::chars_format::scientific, exactDigits - 1)
                         .ptr;
    std::from_chars(buffer.data(), end, number);
    return number;
}

ObjectCopies::ObjectCopies(const JsonDocument& document)
    : m_flat(document.notes.wideNumbers.isEmpty() ? document.flat : m_own.flat) {
    if (!document.notes.wideNumbers.isEmpty()) {
        m_own.flat = document.flat;
        document.notes.wideNumbers.restore(m_own.flat);
    }
}

Json ObjectCopies::take(unsigned long long id, const std::unordered_set<std::string>& left) {
    const auto object = m_flat.objects.find(id);
    if (object == m_flat.objects.end())
        return nullptr;
    if (!m_written.insert(id).second)
        return reference(id);
    return copyObject(object->second, 0, left);
}

Json ObjectCopies::rest() {
    Json objects = Json::array();
    while (!m_referred.empty()) {
        const unsigned long long id = m_referred.front();
        m_referred.pop_front();
        if (!m_written.contains(id) && m_flat.objects.contains(id))
            objects.push_back(take(id));
    }
    return objects;
}

std::string ObjectCopies::text(const std::string& text) {
    if (isPlain(text))
        return text;
    QString characters = QString::fromStdString(text);
    // Quirk: readers end a text at its first character 0.
    characters.replace(QChar(0), QChar(QChar::ReplacementCharacter));
    std::string result = characters.toStdString();
    m_hasChangedTexts = m_hasChangedTexts || result != text;
    return result;
}

Json ObjectCopies::copy(const json& value, int depth) {
    const bool isTooDeep = depth >= mostLevels;
    if (const unsigned long long target = linkTarget(value); target != 0) {
        const auto object = m_flat.objects.find(target);
        if (object == m_flat.objects.end() || m_written.contains(target))
            return reference(target);
        if (isTooDeep || m_reserved.contains(target)) {
            m_referred.push_back(target);
            return reference(target);
        }
        m_written.insert(target);
        return copyObject(object->second, depth);
    }
    if (value.is_structured() && isTooDeep)
        return asText(value);
    if (value.is_object())
        return copyObject(value, depth);
    if (value.is_array()) {
        Json array = Json::array();
        for (const json& item : value)
            array.push_back(copy(item, depth + 1));
        return array;
    }
    if (value.is_string())
        return text(value.get_ref<const std::string&>());
    if (const auto* digits = digitsOf(value))
        return std::string(digits->begin(), digits->end());
    if (value.is_number())
        return copyNumber(value);
    return value.is_boolean() ? Json(value.get<bool>()) : Json();
}

Json ObjectCopies::copyObject(const json& object, int depth, const std::unordered_set<std::string>& left) {
    std::map<std::string, const json*> members; // readers write keys in that order
    for (const auto& [key, value] : object.items()) {
        if (left.contains(key))
            continue;
        std::string name = (isKeyOfReaders(key) ? "_" : "") + text(key);
        while (!members.emplace(name, &value).second)
            name += '_'; // two keys that differ in a replaced character
    }
    Json result = Json::object();
    auto& list = static_cast<std::vector<Json::object_t::value_type>&>(result.get_ref<Json::object_t&>());
    list.reserve(members.size());
    for (const auto& [key, value] : members)
        list.emplace_back(key, copy(*value, depth + 1));
    return result;
}

Json ObjectCopies::copyNumber(const json& value) {
    if (value.is_number_unsigned())
        return wholeNumber(value.get<std::uint64_t>());
    if (value.is_number_integer())
        return value.get<std::int64_t>();
    const double number = value.get<double>();
    if (std::isnan(number))
        return "NaN";
    if (std::isinf(number))
        return number < 0 ? "-Infinity" : "Infinity";
    return isReadExactly(number) ? Json(number) : Json(value.dump());
}

Json ObjectCopies::asText(const json& value) {
    // Objects that are referred to only in there are written elsewhere.
    std::vector<const json*> pending{&value};
    while (!pending.empty()) {
        const json& next = *pending.back();
        pending.pop_back();
        if (const unsigned long long target = linkTarget(next); target != 0)
            m_referred.push_back(target);
        else if (next.is_structured()) {
            for (const json& item : next)
                pending.push_back(&item);
        }
    }
    return text(writeJson(value).toStdString());
}

} // namespace Reader::Exchange
