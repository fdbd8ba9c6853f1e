#include "Reader/JsonText.h"

#include "Reader/Error.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string>
#include <string_view>
#include <vector>

using nlohmann::json;

namespace Reader {
namespace {

class Writer {
public:
    std::string run(const json& root);

private:
    struct Level {
        const json* container;
        json::const_iterator next;
    };

    void begin(const json& value);
    void writeScalar(const json& value);
    void writeString(const std::string& text);
    template <class Integer>
    void writeInteger(Integer number);

    std::string m_text;
    std::vector<Level> m_levels;
};

std::string Writer::run(const json& root) {
    begin(root);
    while (!m_levels.empty()) {
        Level& level = m_levels.back();
        const json& container = *level.container;
        if (level.next == container.end()) {
            m_text += container.is_object() ? '}' : ']';
            m_levels.pop_back();
            continue;
        }
        if (level.next != container.begin())
            m_text += ',';
        const json::const_iterator member = level.next++;
        if (container.is_object()) {
            writeString(member.key());
            m_text += ':';
        }
        begin(*member);
    }
    return std::move(m_text);
}

void Writer::begin(const json& value) {
    if (value.is_structured()) {
        m_text += value.is_object() ? '{' : '[';
        m_levels.push_back({&value, value.begin()});
    } else {
        writeScalar(value);
    }
}

void Writer::writeScalar(const json& value) {
    switch (value.type()) {
    case json::value_t::string:
        writeString(value.get_ref<const std::string&>());
        break;
    case json::value_t::number_unsigned:
        writeInteger(value.get<json::number_unsigned_t>());
        break;
    case json::value_t::number_integer:
        writeInteger(value.get<json::number_integer_t>());
        break;
    default:
        m_text += value.dump();
    }
}

void Writer::writeString(const std::string& text) {
    const bool isPlain = std::all_of(text.begin(), text.end(),
                                     [](char c) { return c >= 0x20 && c < 0x7F && c != '"' && c != '\\'; });
    if (isPlain) {
        m_text += '"';
        m_text += text;
        m_text += '"';
    } else {
        m_text += json(text).dump();
    }
}

template <class Integer>
void Writer::writeInteger(Integer number) {
    std::array<char, 24> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    m_text.append(digits.data(), end);
}

/// The reason in an error text of the JSON library, without the error number at its start.
std::string reasonIn(const std::string& text, std::string_view end) {
    const auto reason = text.find(end);
    return reason == std::string::npos ? text : text.substr(reason + end.size());
}

} // namespace

json parseJson(const QByteArray& bytes, const QString& name) {
    try {
        return json::parse(bytes.begin(), bytes.end());
    } catch (const json::parse_error& error) {
        throw Error(
            ErrorKind::BrokenJson,
            {.file = name, .byte = static_cast<qint64>(error.byte), .reason = reasonIn(error.what(), ": ")});
    } catch (const json::out_of_range&
                 error) { // a number out of the range of double; the JSON library gives no position
        throw Error(ErrorKind::BrokenJson, {.file = name, .reason = reasonIn(error.what(), "] ")});
    }
}

QByteArray writeJson(const json& value) {
    return QByteArray::fromStdString(Writer().run(value));
}

} // namespace Reader
