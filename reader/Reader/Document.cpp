#include "Reader/Document.h"

#include "Archive/Internal/JsonValues.h"
#include "Archive/Internal/TreeFacts.h"
#include "Reader/AdaptorTable.h"
#include "Reader/Error.h"
#include "Reader/JsonText.h"
#include "Reader/TextForm.h"
#include "Reader/XmlText.h"

#include <stdexcept>
#include <utility>

using Archive::Internal::copied;
using Bundle::Backend;
using nlohmann::json;

namespace Reader {
namespace {

const QString archiveTag = QStringLiteral("Archive");
const QString versionAttribute = QStringLiteral("schemaVersion");
constexpr const char* dataKey = "data";
constexpr const char* formVersionKey = "version";
constexpr const char* schemaVersionKey = "schemaVersion";

[[noreturn]] void fail(ErrorKind kind, const QString& name, const std::string& reason = {}) {
    throw Error(kind, {.file = name, .reason = reason});
}

constexpr long long greatestVersion = 1000000; // far above any real version

/// A value as a part of a sentence.
std::string excerpt(const json& value) {
    constexpr int longest = 60;
    const QString text = QString::fromUtf8(writeJson(value));
    return (text.size() > longest ? text.left(longest) + "..." : text).toStdString();
}

/// What a document says of its schema version.
struct StatedVersion {
    std::optional<int> number; ///< none for no number
    std::string text;          ///< as it is in the document; empty where it says nothing
};

StatedVersion versionIn(const QDomElement& archive) {
    if (!archive.hasAttribute(versionAttribute))
        return {};
    const QString text = archive.attribute(versionAttribute);
    bool isNumber = false;
    const long long version = text.toLongLong(&isNumber);
    StatedVersion stated{std::nullopt, '"' + text.toStdString() + '"'};
    if (isNumber && version >= 0 && version <= greatestVersion)
        stated.number = static_cast<int>(version);
    return stated;
}

StatedVersion versionIn(const json& envelope) {
    const auto it = envelope.find(schemaVersionKey);
    if (it == envelope.end())
        return {};
    const auto version = Serialize::Json::toId(*it);
    StatedVersion stated{std::nullopt, excerpt(*it)};
    if (version && *version <= static_cast<unsigned long long>(greatestVersion))
        stated.number = static_cast<int>(*version);
    return stated;
}

/// Throws for a known schema version whose documents have the other form.
void checkForm(Backend form, int version, const QString& name) {
    const bool isOther = form == Backend::Xml ? version > lastXmlVersion : version < firstJsonVersion;
    if (isOther && version <= currentVersion)
        throw Error(
            ErrorKind::WrongForm,
            {.file = name, .version = version, .reason = form == Backend::Xml ? "an XML archive" : "JSON"});
}

/// The version to go by: `given`, or else what the document says.
std::optional<int> chooseVersion(std::optional<int> given, const StatedVersion& stated, Backend form,
                                 const QString& name) {
    if (given)
        checkForm(form, *given, name);
    else if (!stated.number && !stated.text.empty())
        fail(ErrorKind::BadVersion, name, stated.text);
    return given ? given : stated.number;
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
    const StatedVersion stated = versionIn(envelope);
    version = chooseVersion(version, stated, Backend::Json, name);
    envelope.erase(schemaVersionKey);
    return Document(openEnvelope(std::move(envelope), name), version, stated.number);
}

Serialized serializeXml(Document document) {
    QDomElement archive = document.xml().documentElement();
    if (document.version())
        archive.setAttribute(versionAttribute, QString::number(*document.version()));
    return {writeXml(document.xml()), 0, {}};
}

Serialized serializeJson(Document document) {
    JsonDocument& project = document.json();
    Serialized result;
    result.moved = project.notes.wideNumbers.restore(project.flat);
    json envelope = std::move(project.envelope);
    envelope[dataKey] = nullptr;
    if (document.version())
        envelope[schemaVersionKey] = *document.version();
    Nester nester(std::move(project));
    std::string text;
    for (const auto& [key, value] : envelope.items()) {
        text += text.empty() ? '{' : ',';
        appendJson(key, text);
        text += ':';
        if (key == dataKey) {
            consumeJson(
                nester.start(), [&](json& part) { nester.visit(part); }, text);
        } else {
            appendJson(value, text);
        }
    }
    text += "}\n";
    result.leftOut = nester.leftOut();
    result.bytes = QByteArray::fromStdString(text);
    return result;
}

JsonDocument copyOf(const JsonDocument& project) {
    JsonDocument copy;
    copy.root = project.root;
    copy.envelope = copied(project.envelope);
    copy.notes = project.notes;
    for (const auto& [id, object] : project.flat.objects)
        copy.flat.objects.emplace_hint(copy.flat.objects.end(), id, copied(object));
    return copy;
}

} // namespace

Document::Document(const QDomDocument& xml, std::optional<int> version, std::optional<int> statedVersion)
    : m_content(xml), m_version(version), m_statedVersion(statedVersion) {}
Document::Document(JsonDocument json, std::optional<int> version, std::optional<int> statedVersion)
    : m_content(std::move(json)), m_version(version), m_statedVersion(statedVersion) {}
Document::~Document() = default;

/// A QDomDocument can't be moved: the one that was copied would keep the tree alive.
Document::Content Document::take(Content& content) noexcept {
    Content taken = std::move(content);
    if (QDomDocument* tree = std::get_if<QDomDocument>(&content))
        *tree = QDomDocument();
    return taken;
}

Document::Document(Document&& other) noexcept
    : m_content(take(other.m_content)), m_version(other.m_version), m_statedVersion(other.m_statedVersion),
      m_facts(std::move(other.m_facts)) {}

Document& Document::operator=(Document&& other) noexcept {
    m_content = take(other.m_content);
    m_version = other.m_version;
    m_statedVersion = other.m_statedVersion;
    m_facts = std::move(other.m_facts);
    return *this;
}

Backend Document::form() const {
    return m_content.index() == 0 ? Bundle::Backend::Xml : Bundle::Backend::Json;
}

QDomDocument& Document::xml() {
    m_facts.reset();
    return std::get<QDomDocument>(m_content);
}

Document Document::clone() const {
    return isXml() ? Document(xml().cloneNode().toDocument(), m_version, m_statedVersion)
                   : Document(copyOf(json()), m_version, m_statedVersion);
}

Document parse(const QByteArray& bytes, const QString& name, std::optional<int> version) {
    const auto first = firstCharacter(bytes);
    if (!first)
        fail(ErrorKind::Empty, name);
    switch (*first) {
    case U'<': {
        auto facts = std::make_unique<Archive::Internal::TreeFacts>();
        const QDomDocument xml = parseArchive(bytes, name, *facts);
        const StatedVersion stated = versionIn(xml.documentElement());
        Document document(xml, chooseVersion(version, stated, Backend::Xml, name), stated.number);
        document.m_facts = std::move(facts);
        return document;
    }
    case U'{':
    case U'[':
        if (encodingOf(bytes) != Encoding::Bytes)
            fail(ErrorKind::UnknownForm, name, describeFile(bytes));
        return parseProjectJson(bytes, name, version);
    default:
        fail(ErrorKind::UnknownForm, name, describeFile(bytes));
    }
}

JsonDocument openEnvelope(json envelope, const QString& name) {
    const auto version = envelope.find(formVersionKey);
    if (version == envelope.end() || *version != "1.0")
        fail(ErrorKind::WrongEnvelope, name,
             "\"version\" is " + (version == envelope.end() ? "missing" : excerpt(*version)));
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
