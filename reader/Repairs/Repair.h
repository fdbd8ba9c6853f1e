#pragma once

#include "Reader/MigrationReport.h"

#include <QByteArray>
#include <QDomElement>

#include <nlohmann/json.hpp>

#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace Archive::Internal {
class ArchiveEditor;
}

namespace Reader {
struct JsonDocument;
}

namespace Repairs {

// Places at which repairs look, beside class names of steps.

/// The text of the file, before it is parsed.
inline constexpr std::string_view parsing = "parsing";
/// The document as it was read, before anything else is done with it.
inline constexpr std::string_view loading = "loading";
/// The archive behind its last step, before the conversion to JSON.
inline constexpr std::string_view conversion = "XmlToJson";

/// Where a repair looks.
struct Place {
    std::string_view before; ///< class name of a step, or one of the places above
    int version;             ///< schema version of the document as it was read
};

/// Collects what a repair does, for the report.
class Changes {
public:
    /// Notes a repaired place in the root object that contains that element.
    void note(const QDomElement& e);
    /// Names an object that is concerned, without a place of its own.
    void mention(const QDomElement& e);
    /// The same for an object of a flat document.
    void note(unsigned long long id, const nlohmann::json& object);
    void mention(unsigned long long id, const nlohmann::json& object);
    /// Notes that byte of a text. The first places are listed.
    void note(std::string_view text, std::size_t byte, const std::string& what);
    /// What was done, a sentence without a full stop.
    void describe(std::string text) { m_made.text = std::move(text); }

    std::size_t count() const { return m_made.count; }
    Reader::RepairMade take() { return std::move(m_made); }

private:
    void add(std::string className, unsigned long long id);

    Reader::RepairMade m_made;
    std::set<std::pair<unsigned long long, std::string>> m_known;
};

/// A repair of an archive. It changes the archive through the editor, as steps do, and runs between them.
///
/// Threads: belongs to the thread of its migration. The same holds for the other kinds.
class ArchiveRepair {
public:
    virtual ~ArchiveRepair() = default;

    /// Looks for what has to be repaired. Changes nothing.
    virtual bool find(Archive::Internal::ArchiveEditor& archive, const Place& place) = 0;
    /// Repairs what find() has found.
    virtual void repair(Archive::Internal::ArchiveEditor& archive, Changes& changes) = 0;
};

/// A repair of a flat document.
class JsonRepair {
public:
    virtual ~JsonRepair() = default;

    /// Looks for what has to be repaired. Changes nothing.
    virtual bool find(Reader::JsonDocument& document, const Place& place) = 0;
    /// Repairs what find() has found.
    virtual void repair(Reader::JsonDocument& document, Changes& changes) = 0;
};

/// A repair of a file's text, which can't be parsed without it.
class TextRepair {
public:
    virtual ~TextRepair() = default;

    /// The repaired text. Where nothing has to be repaired, nothing is noted and the result is the same bytes.
    virtual QByteArray repair(const QByteArray& bytes, Changes& changes) = 0;
};

/// "1 clip", "2 clips"
std::string counted(std::size_t count, const std::string& noun);

} // namespace Repairs
