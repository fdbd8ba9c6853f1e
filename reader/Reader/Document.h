#pragma once

#include "Adaptors/Backend.h"
#include "Archive/Internal/TreeFacts.h"
#include "Reader/Flatten.h"

#include <QByteArray>
#include <QDomDocument>
#include <QString>

#include <optional>
#include <variant>

namespace Reader {

/// A project in JSON: the flat document, and what else its envelope held.
struct JsonDocument : FlatDocument {
    nlohmann::json envelope; ///< without "data" and "schemaVersion"
    FlattenNotes notes;
};

/// A saved project in memory, in one of the two forms.
struct Document {
    std::variant<QDomDocument, JsonDocument> content;
    std::optional<int> version; ///< schema version; none where the document names none
    /// What the archive held when it was read; none once it was handed out to be changed.
    std::optional<Archive::Internal::TreeFacts> facts = std::nullopt;

    Bundle::Backend form() const {
        return content.index() == 0 ? Bundle::Backend::Xml : Bundle::Backend::Json;
    }
    bool isXml() const { return form() == Bundle::Backend::Xml; }
    QDomDocument& xml() {
        facts.reset();
        return std::get<QDomDocument>(content);
    }
    const QDomDocument& xml() const { return std::get<QDomDocument>(content); }
    JsonDocument& json() { return std::get<JsonDocument>(content); }
    const JsonDocument& json() const { return std::get<JsonDocument>(content); }
};

/// Reads a project of either form; `name` is the file's name for errors. `version` stands in for what the document
/// says of its schema version, however wrong that is. Throws Error.
Document parse(const QByteArray& bytes, const QString& name, std::optional<int> version = std::nullopt);

/// Takes the nested value of a JSON project, envelope and all. Throws Error for a wrong envelope.
JsonDocument openEnvelope(nlohmann::json envelope, const QString& name);

struct Serialized {
    QByteArray bytes;
    std::size_t leftOut = 0; ///< objects that nothing reaches from the root and JSON therefore does not hold
};

/// The project as it is saved, with its schema version. The same document gives the same bytes on every run.
Serialized serialize(Document document);

/// What stands for a form in messages.
QString formName(Bundle::Backend form);

} // namespace Reader
