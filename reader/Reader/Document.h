#pragma once

#include "Adaptors/Backend.h"
#include "Reader/Flatten.h"

#include <QByteArray>
#include <QDomDocument>
#include <QString>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace Archive::Internal {
struct TreeFacts;
}

namespace Reader {

/// Counts by class name.
using ObjectCounts = std::map<std::string, std::size_t>;

/// A project in JSON: the flat document and the other members of its envelope.
///
/// Threads: a plain value.
struct JsonDocument : FlatDocument {
    nlohmann::json envelope; ///< all members except "data" and "schemaVersion"
    FlattenNotes notes;
};

/// A project in memory, in one of the two forms. It can be moved, not copied: a copy of the XML form would
/// share the tree. clone() gives an independent document.
///
/// Threads: a document may be used by one thread at a time, also for reading. Different documents are
/// independent.
class Document {
public:
    explicit Document(const QDomDocument& xml, std::optional<int> version = std::nullopt,
                      std::optional<int> statedVersion = std::nullopt);
    explicit Document(JsonDocument json, std::optional<int> version = std::nullopt,
                      std::optional<int> statedVersion = std::nullopt);
    ~Document();
    Document(Document&& other) noexcept;
    Document& operator=(Document&& other) noexcept;

    Bundle::Backend form() const;
    bool isXml() const { return form() == Bundle::Backend::Xml; }

    /// The schema version; nothing if the document has none.
    std::optional<int> version() const { return m_version; }
    void setVersion(std::optional<int> version) { m_version = version; }

    /// The schema version that the document itself named when it was read; none where it named none or no number.
    std::optional<int> statedVersion() const { return m_statedVersion; }

    /// The content of that form, which the document must have. The non-const xml() hands the tree out to be changed.
    QDomDocument& xml();
    const QDomDocument& xml() const { return std::get<QDomDocument>(m_content); }
    JsonDocument& json() { return std::get<JsonDocument>(m_content); }
    const JsonDocument& json() const { return std::get<JsonDocument>(m_content); }

    /// An independent document of the same form, content and version. Depth costs memory, not stack.
    Document clone() const;

private:
    friend Document parse(const QByteArray&, const QString&, std::optional<int>);
    friend ObjectCounts countObjects(const Document&);
    friend class Migration;

    using Content = std::variant<QDomDocument, JsonDocument>;
    static Content take(Content& content) noexcept;

    Content m_content;
    std::optional<int> m_version;
    std::optional<int> m_statedVersion;
    /// What the parser saw of the tree; null for JSON, and once the tree was handed out to be changed.
    std::unique_ptr<Archive::Internal::TreeFacts> m_facts;
};

/// Reads a project of either form; `name` is the file's name for errors. `version` replaces what the document says of
/// its schema version, however wrong that is, but must be one of its form. Throws Error.
///
/// Threads: thread-safe.
Document parse(const QByteArray& bytes, const QString& name, std::optional<int> version = std::nullopt);

/// Reads a project from the JSON value of its file, the envelope. `name` is the file's name in errors. Throws
/// Error for a wrong envelope.
///
/// Threads: as parse().
JsonDocument openEnvelope(nlohmann::json envelope, const QString& name);

struct Serialized {
    QByteArray bytes;
    std::size_t leftOut = 0; ///< objects that nothing reaches from the root and JSON therefore does not hold
    std::vector<MovedNumber> moved; ///< wide numbers that a step put in another place: they lost digits
};

/// The bytes of a project file, with the schema version. The same document gives the same bytes on every run.
///
/// Threads: as parse().
Serialized serialize(Document document);

/// The name of a form in messages.
QString formName(Bundle::Backend form);

} // namespace Reader
