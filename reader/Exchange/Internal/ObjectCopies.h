#pragma once

#include "Reader/Document.h"

#include <nlohmann/json.hpp>

#include <deque>
#include <string>
#include <unordered_set>

namespace Reader::Exchange {

/// Copies a project's objects into metadata: each in full where it is first needed, and as a reference by id
/// everywhere else, as project files do it. So all copies together are no larger than the project.
///
/// What readers of OpenTimelineIO would change or refuse is written in another way: numbers that they round and whole
/// numbers beyond 64 bits with a sign become texts, keys that begin with "OTIO_" get a "_" before them, and values in too many
/// levels become the text of their JSON.
class ObjectCopies {
public:
    using Json = nlohmann::ordered_json;

    explicit ObjectCopies(const JsonDocument& document);
    ObjectCopies(const ObjectCopies&) = delete;
    ObjectCopies& operator=(const ObjectCopies&) = delete;

    /// The object gets a place of its own by take(): where others refer to it, it stays a reference.
    void reserve(unsigned long long id) { m_reserved.insert(id); }

    /// The object in full, without the fields `left`; a reference where it was written before, and null for an id that
    /// no object has.
    Json take(unsigned long long id, const std::unordered_set<std::string>& left = {});
    /// A value of a field.
    Json value(const nlohmann::json& value) { return copy(value, 0); }

    /// All objects that were referred to and not written, and those that they refer to, each in full.
    Json rest();

    /// A text as it can be written.
    std::string text(const std::string& text);
    /// Whether a text had to be changed for that.
    bool hasChangedTexts() const { return m_hasChangedTexts; }

private:
    Json copy(const nlohmann::json& value, int depth);
    Json copyObject(const nlohmann::json& object, int depth,
                    const std::unordered_set<std::string>& left = {});
    static Json copyNumber(const nlohmann::json& value);
    Json asText(const nlohmann::json& value);

    JsonDocument m_own; ///< with wide numbers in their places; empty where there are none
    const Serialize::Json::FlatObject& m_flat;
    std::unordered_set<unsigned long long> m_reserved;
    std::unordered_set<unsigned long long> m_written;
    std::deque<unsigned long long> m_referred;
    bool m_hasChangedTexts = false;
};

/// Whether readers that convert numbers in the simple way read the text of this one exactly.
bool isReadExactly(double number);
/// The number next to it for which that holds.
double roundedForReaders(double number);

} // namespace Reader::Exchange
