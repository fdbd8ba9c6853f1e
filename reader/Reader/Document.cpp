#include "Reader/Document.h"

#include "Archive/Internal/TreeFacts.h"
#include "Reader/Error.h"
#include "Reader/JsonText.h"
#include "Reader/XmlText.h"

#include <stdexcept>
#include <utility>

using nlohmann::json;

namespace Reader {
namespace {

const QString archiveTag = QStringLiteral("Archive");
const QString versionAttribute = QStringLiteral("schemaVersion");
constexpr const char* dataKey = "data";
constexpr const char* formVersionKey = "version";
constexpr const char* schemaVersionKey = "schemaVersion";

/// The first byte that is no white space, after a byte order mark if there is one. Nothing if there is no
/// such byte.
std::optional<char> firstByte(const QByteArray& bytes) {
    int position = bytes.startsWith("\xEF\xBB\xBF") ? 3 : 0;
    while (position < bytes.size() && QByteArray(" \t\r\n").contains(bytes.at(position)))
        ++position;
    return position < bytes.size() ? std::optional(bytes.at(position)) : std::nullopt;
}

[[noreturn]] void fail(ErrorKind kind, const QString& name, const std::string& reason = {}) {
    throw Error(kind, {.file = name, .reason = reason});
}

constexpr long long greatestVersion = 1000000; // far above any real version

std::optional<int> versionOf(const QDomElement& archive, const QString& name) {
    if (!archive.hasAttribute(versionAttribute))
        return std::nullopt;
    const QString text = archive.attribute(versionAttribute);
    bool isNumber = false;
    const long long version = text.toLongLong(&isNumber);
    if (!isNumber || version < 0 || version > greatestVersion)
        fail(ErrorKind::BadVersion, name, '"' + text.toStdString() + '"');
    return static_cast<int>(version);
}

std::optional<int> versionOf(const json& envelope, const QString& name) {
    const auto it = envelope.find(schemaVersionKey);
    if (it == envelope.end())
        return std::nullopt;
    const auto version = Serialize::Json::toId(*it);
    if (!version || *version > static_cast<unsigned long long>(greatestVersion))
        fail(ErrorKind::BadVersion, name, it->dump());
    return static_cast<int>(*version);
}

QDomDocument parseArchive(const QByteArray& bytes, const QString& name, Archive::Internal::TreeFacts& facts) {
    QDomDocument xml = parseXml(bytes, name, &facts);
    const QDomElement archive = xml.documentElement();
    if (archive.tagName() != archiveTag)
        fail(ErrorKind::NoArchive, name, "the document element is <" + archive.tagName().toStdString() + '>');
    if (facts.archives != 1)
        fail(ErrorKind::NoArchive, name,
             "there are " + std::to_string(facts.archives) + " <Archive> elements");
    return xml;
}

Document parseProjectJson(const QByteArray& bytes, const QString& name, std::optional<int> version) {
    json envelope = parseJson(bytes, name);
    if (!envelope.is_object())
        fail(ErrorKind::WrongEnvelope, name, std::string("the document is a JSON ") + envelope.type_name());
    if (!version)
        version = versionOf(envelope, name);
    envelope.erase(schemaVersionKey);
    return Document(openEnvelope(std::move(envelope), name), version);
}

Serialized serializeXml(Document document) {
    QDomElement archive = document.xml().documentElement();
    if (document.version())
        archive.setAttribute(versionAttribute, QString::number(*document.version()));
    return {writeXml(document.xml()), 0};
}

Serialized serializeJson(Document document) {
    JsonDocument& project = document.json();
    json envelope = std::move(project.envelope);
    Serialized result;
    envelope[dataKey] = nest(std::move(project), result.leftOut);
    if (document.version())
        envelope[schemaVersionKey] = *document.version();
    result.bytes = writeJson(envelope) + '\n';
    return result;
}

/// A copy of a JSON value, made through its text: the copy constructor is recursive, so depth would cost
/// stack.
json copyOf(const json& value) {
    return parseJson(writeJson(value), QString());
}

JsonDocument copyOf(const JsonDocument& project) {
    JsonDocument copy;
    copy.root = project.root;
    copy.envelope = project.envelope;
    copy.notes = project.notes;
    for (const auto& [id, object] : project.flat.objects)
        copy.flat.objects.emplace_hint(copy.flat.objects.end(), id, copyOf(object));
    return copy;
}

} // namespace

Document::Document(const QDomDocument& xml, std::optional<int> version)
    : m_content(xml), m_version(version) {}
Document::Document(JsonDocument json, std::optional<int> version)
    : m_content(std::move(json)), m_version(version) {}
Document::~Document() = default;
Document::Document(Document&& other) noexcept = default;
Document& Document::operator=(Document&& other) noexcept = default;

Bundle::Backend Document::form() const {
    return m_content.index() == 0 ? Bundle::Backend::Xml : Bundle::Backend::Json;
}

QDomDocument& Document::xml() {
    m_facts.reset();
    return std::get<QDomDocument>(m_content);
}

Document Document::clone() const {
    return isXml() ? Document(xml().cloneNode().toDocument(), m_version)
                   : Document(copyOf(json()), m_version);
}

Document parse(const QByteArray& bytes, const QString& name, std::optional<int> version) {
    const auto first = firstByte(bytes);
    if (!first)
        fail(ErrorKind::Empty, name);
    switch (*first) {
    case '<': {
        auto facts = std::make_unique<Archive::Internal::TreeFacts>();
        const QDomDocument xml = parseArchive(bytes, name, *facts);
        Document document(xml, version ? version : versionOf(xml.documentElement(), name));
        document.m_facts = std::move(facts);
        return document;
    }
    case '{':
    case '[':
        return parseProjectJson(bytes, name, version);
    default:
        fail(ErrorKind::UnknownForm, name);
    }
}

JsonDocument openEnvelope(json envelope, const QString& name) {
    const auto version = envelope.find(formVersionKey);
    if (version == envelope.end() || *version != "1.0")
        fail(ErrorKind::WrongEnvelope, name,
             "\"version\" is " + (version == envelope.end() ? "missing" : version->dump()));
    const auto data = envelope.find(dataKey);
    if (data == envelope.end())
        fail(ErrorKind::WrongEnvelope, name, "\"data\" is missing");
    if (!isClassObject(*data))
        fail(ErrorKind::WrongEnvelope, name,
             std::string("\"data\" is ") + (data->is_object() ? "no class object" : data->type_name()));
    JsonDocument document;
    json root = std::move(*data);
    envelope.erase(data);
    try {
        static_cast<FlatDocument&>(document) = flatten(std::move(root), document.notes);
    } catch (const std::length_error& error) {
        fail(ErrorKind::WrongEnvelope, name, error.what());
    }
    document.envelope = std::move(envelope);
    return document;
}

Serialized serialize(Document document) {
    return document.isXml() ? serializeXml(std::move(document)) : serializeJson(std::move(document));
}

QString formName(Bundle::Backend form) {
    return form == Bundle::Backend::Xml ? QStringLiteral("XML archive") : QStringLiteral("JSON");
}

} // namespace Reader
