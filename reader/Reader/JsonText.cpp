#include "Reader/JsonText.h"

#include "Reader/Error.h"
#include "Reader/TextForm.h"
#include "Reader/WideNumbers.h"
#include "Serialize/Json/FlatObject.h"

#include <rapidjson/reader.h>
#include <rapidjson/stream.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

using nlohmann::json;

namespace Reader {
namespace {

/// Appends JSON text to another. `Json` is const unless the values are freed meanwhile.
template <class Json>
class Writer {
public:
    using Prepare = std::function<void(Json&)>;

    explicit Writer(std::string& text, Prepare prepare = {}) : m_text(text), m_prepare(std::move(prepare)) {}

    void run(Json& root);

private:
    struct Level {
        Json* container;
        decltype(std::declval<Json>().begin()) next;
        bool isPrepared; ///< whether `m_prepare` is called for what is in it
    };

    void begin(Json& value, bool isPrepared);
    void end();
    void writeScalar(const json& value);
    void writeString(const std::string& text);
    template <class Integer>
    void writeInteger(Integer number);

    std::string& m_text;
    const Prepare m_prepare;
    std::vector<Level> m_levels;
};

template <class Json>
void Writer<Json>::run(Json& root) {
    begin(root, m_prepare != nullptr);
    while (!m_levels.empty()) {
        Level& level = m_levels.back();
        Json& container = *level.container;
        if (level.next == container.end()) {
            end();
            continue;
        }
        if (level.next != container.begin())
            m_text += ',';
        const auto member = level.next++;
        bool isPrepared = level.isPrepared;
        if (container.is_object()) {
            writeString(member.key());
            m_text += ':';
            isPrepared = isPrepared && member.key() != Serialize::Json::MetaDetails::s_meta;
        }
        begin(*member, isPrepared);
    }
}

template <class Json>
void Writer<Json>::begin(Json& value, bool isPrepared) {
    if (isPrepared)
        m_prepare(value);
    if (value.is_structured()) {
        m_text += value.is_object() ? '{' : '[';
        m_levels.push_back({&value, value.begin(), isPrepared});
    } else {
        writeScalar(value);
    }
}

/// Ends the innermost container. What is in it was just used: to free it now costs less than later.
template <class Json>
void Writer<Json>::end() {
    Json& container = *m_levels.back().container;
    m_text += container.is_object() ? '}' : ']';
    m_levels.pop_back();
    if constexpr (!std::is_const_v<Json>)
        container.clear();
}

template <class Json>
void Writer<Json>::writeScalar(const json& value) {
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
    case json::value_t::binary:
        m_text.append(digitsOf(value)->begin(), digitsOf(value)->end());
        break;
    default:
        m_text += value.dump();
    }
}

template <class Json>
void Writer<Json>::writeString(const std::string& text) {
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

template <class Json>
template <class Integer>
void Writer<Json>::writeInteger(Integer number) {
    std::array<char, 24> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    m_text.append(digits.data(), end);
}

[[noreturn]] void failAtNul(const QString& name, qint64 byte) {
    throw Error(ErrorKind::BrokenJson,
                {.file = name, .byte = byte, .reason = "a NUL byte, which JSON text never has"});
}

/// What is wrong, out of a text of the library, which leads with its own error number.
std::string reasonIn(const std::string& text, std::string_view end) {
    const auto reason = text.find(end);
    return reason == std::string::npos ? text : text.substr(reason + end.size());
}

/// Takes what the parser finds and builds the value of it.
class Builder {
public:
    using Number = json::number_float_t;

    Builder(const QByteArray& bytes, const QString& name) : m_bytes(bytes), m_name(name) {}

    json take() { return std::move(m_root); }

    // Called by the parser. Each goes on.

    bool null() { return add(nullptr); }
    bool boolean(bool value) { return add(value); }
    bool number_integer(json::number_integer_t value) { return add(value); }
    bool number_unsigned(json::number_unsigned_t value) { return add(value); }
    bool number_float(Number value, const std::string& token) {
        const bool isWhole = token.find_first_of(".eE") == std::string::npos;
        return isWhole ? add(wideNumber(token)) : add(value);
    }
    bool string(std::string& text) { return add(std::move(text)); }
    bool binary(json::binary_t&) { return false; } // text has none
    bool start_object(std::size_t) { return open(json::value_t::object); }
    bool start_array(std::size_t) { return open(json::value_t::array); }
    bool end_object() { return close(); }
    bool end_array() { return close(); }
    bool key(std::string& key) {
        auto& members = m_levels.back().container->get_ref<json::object_t&>();
        // Written files have sorted members. Of two of one name the later counts.
        m_member = &*members.try_emplace(members.end(), std::move(key));
        return true;
    }
    bool parse_error(std::size_t position, const std::string& token, const json::exception& error);

private:
    using Member = json::object_t::value_type;
    struct Level {
        json* container;
        const Member* member; ///< of an object which holds it; null in an array and for the root
    };

    template <class Value>
    json* place(Value&& value);
    template <class Value>
    bool add(Value&& value) {
        return place(std::forward<Value>(value)) != nullptr;
    }
    bool open(json::value_t type);
    bool close();
    [[noreturn]] void failAtEnd() const;

    const QByteArray& m_bytes;
    const QString& m_name;
    json m_root;
    Member* m_member = nullptr; ///< the one that waits for its value
    std::vector<Level> m_levels;
};

/// Puts a value where it belongs.
template <class Value>
json* Builder::place(Value&& value) {
    if (m_levels.empty()) {
        m_root = std::forward<Value>(value);
        return &m_root;
    }
    if (auto* list = m_levels.back().container->get_ptr<json::array_t*>())
        return &list->emplace_back(std::forward<Value>(value));
    m_member->second = std::forward<Value>(value);
    return &m_member->second;
}

bool Builder::open(json::value_t type) {
    const bool isMember = !m_levels.empty() && m_levels.back().container->is_object();
    const Member* member = isMember ? m_member : nullptr;
    m_levels.push_back({place(json(type)), member});
    return true;
}

bool Builder::close() {
    m_levels.pop_back();
    return true;
}

bool Builder::parse_error(std::size_t position, const std::string&, const json::exception& error) {
    const auto byte = static_cast<qint64>(position);
    if (byte > m_bytes.size())
        failAtEnd();
    // The library takes a NUL for the end of the text.
    if (byte > 0 && m_bytes.at(static_cast<int>(byte) - 1) == '\0')
        failAtNul(m_name, byte);
    const bool isSyntax = dynamic_cast<const json::parse_error*>(&error) != nullptr;
    const std::string reason = reasonIn(error.what(), isSyntax ? ": " : "] ");
    throw Error(ErrorKind::BrokenJson, {.file = m_name, .byte = byte, .reason = reason});
}

/// The parser wanted more than there is, and all until here is well-formed.
void Builder::failAtEnd() const {
    const auto level = std::find_if(m_levels.rbegin(), m_levels.rend(),
                                    [](const Level& candidate) { return candidate.member != nullptr; });
    const std::string where = level == m_levels.rend() ? "the document" : json(level->member->first).dump();
    throw cutOff(ErrorKind::BrokenJson, m_name, m_bytes, m_bytes.size(), where);
}

/// Hands what the faster parser finds to the builder. Each call goes on unless the number needs the other parser.
class FastEvents {
public:
    explicit FastEvents(Builder& builder) : m_builder(builder) {}

    bool Null() { return m_builder.null(); }
    bool Bool(bool value) { return m_builder.boolean(value); }
    bool RawNumber(const char* digits, rapidjson::SizeType length, bool);
    bool String(const char* text, rapidjson::SizeType length, bool) {
        std::string value(text, length);
        return m_builder.string(value);
    }
    bool Key(const char* text, rapidjson::SizeType length, bool) {
        std::string key(text, length);
        return m_builder.key(key);
    }
    bool StartObject() { return m_builder.start_object(0); }
    bool EndObject(rapidjson::SizeType) { return m_builder.end_object(); }
    bool StartArray() { return m_builder.start_array(0); }
    bool EndArray(rapidjson::SizeType) { return m_builder.end_array(); }

    // Not called: numbers come as text.

    bool Int(int) { return false; }
    bool Uint(unsigned) { return false; }
    bool Int64(std::int64_t) { return false; }
    bool Uint64(std::uint64_t) { return false; }
    bool Double(double) { return false; }

private:
    template <class Number>
    static bool read(std::string_view digits, Number& number) {
        return std::from_chars(digits.data(), digits.data() + digits.size(), number).ec == std::errc();
    }

    Builder& m_builder;
};

bool FastEvents::RawNumber(const char* digits, rapidjson::SizeType length, bool) {
    const std::string_view text(digits, length);
    if (text.find_first_of(".eE") != std::string_view::npos) {
        json::number_float_t number = 0;
        return read(text, number) && m_builder.number_float(number, std::string(text));
    }
    if (text.front() == '-') {
        json::number_integer_t number = 0;
        return read(text, number) ? m_builder.number_integer(number)
                                  : m_builder.number_float(0, std::string(text));
    }
    json::number_unsigned_t number = 0;
    return read(text, number) ? m_builder.number_unsigned(number)
                              : m_builder.number_float(0, std::string(text));
}

/// Reads text with a parser that is several times as fast as the library's own. Gives false for all that it can't be
/// trusted with: errors, which it describes in other words, and escaped characters, of which it takes lone surrogates.
bool readFast(QByteArray bytes, Builder& builder) {
    const std::string_view text(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    if (text.find('\0') != text.npos ||
        text.find("\\u") != text.npos) // QByteArray searches texts byte by byte
        return false;
    // After a first byte of UTF-8 the parser takes up to three more before it looks at them, also at the end of the text.
    bytes.append(3, '\0');
    rapidjson::InsituStringStream stream(bytes.data()); // strings are unescaped in this copy
    FastEvents events(builder);
    constexpr unsigned flags = rapidjson::kParseInsituFlag | rapidjson::kParseIterativeFlag |
                               rapidjson::kParseNumbersAsStringsFlag | rapidjson::kParseValidateEncodingFlag;
    rapidjson::Reader reader;
    return !reader.Parse<flags>(stream, events).IsError();
}

} // namespace

json parseJson(const QByteArray& bytes, const QString& name) {
    if (Builder fast(bytes, name); readFast(bytes, fast))
        return fast.take();
    Builder builder(bytes, name);
    json::sax_parse(bytes.begin(), bytes.end(), &builder);
    if (const int nul = bytes.indexOf('\0'); nul >= 0)
        failAtNul(name, nul + 1); // what is behind it was not read
    return builder.take();
}

QByteArray writeJson(const json& value) {
    std::string text;
    appendJson(value, text);
    return QByteArray::fromStdString(text);
}

void appendJson(const json& value, std::string& text) {
    Writer<const json>(text).run(value);
}

void consumeJson(json value, const std::function<void(json&)>& prepare, std::string& text) {
    Writer<json>(text, prepare).run(value);
}

} // namespace Reader
