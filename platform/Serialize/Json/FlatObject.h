#pragma once

#include <QString>

#include <nlohmann/json.hpp>

#include <map>
#include <optional>
#include <set>
#include <string>

/// Converts a text to a JSON string in UTF-8, so that `json value = QString(...)` works.
void to_json(nlohmann::json& target, const QString& text);

namespace Serialize::Json {

using ::to_json;

/// The keys that mark class objects and references.
struct MetaDetails {
    inline static const std::string s_meta = "@meta";
    inline static const std::string s_object_id = "object_id";
    inline static const std::string s_class_name = "class_name";
    inline static const std::string s_meta_reference = "@meta_reference";
};

/// A document as a map of class objects by id, with references between them. A class object is a JSON object
/// with {"@meta": {"class_name": name, "object_id": id}}; a reference is {"@meta_reference": id}.
///
/// `objects` may be changed directly, so no index is kept: each selection searches all objects. Pointers to
/// objects stay valid while objects are added.
struct FlatObject {
    std::map<unsigned long long, nlohmann::json> objects;

    /// Adds an object. Its id is the greatest id in `objects` plus 1. Throws std::logic_error if no id is
    /// left.
    nlohmann::json* createObject(const std::string& className);

    /// A reference to an object. A null value if `object` is no class object. An id is not checked.
    nlohmann::json createRef(const nlohmann::json& object) const;
    nlohmann::json createRef(const nlohmann::json* object) const;
    nlohmann::json createRef(unsigned long long id) const;

    /// The object of that class with the lowest id, or null.
    nlohmann::json* firstObjectByClassName(const std::string& className);

    /// All objects of exactly that class, or of one of those classes. Ordered by address.
    std::set<nlohmann::json*> objectsByClassName(const std::string& className);
    std::set<nlohmann::json*> objectsByClassNames(const std::set<std::string>& classNames);
};

/// The value as an id; nothing if it is no integer or is negative.
std::optional<unsigned long long> toId(const nlohmann::json& value);

/// The `object_id` of a class object; nothing for any other value.
std::optional<unsigned long long> getObjectId(const nlohmann::json& value);

/// The id that a reference refers to; nothing for any other value.
std::optional<unsigned long long> getReferenceObjectId(const nlohmann::json& value);

/// The id of a class object or the target of a reference. If a value has both, the id of the class object.
std::optional<unsigned long long> getAnyObjectId(const nlohmann::json& value);

/// The `class_name` of a class object, as a copy or as a pointer into the value; nothing or null for any
/// other value.
std::optional<std::string> getClassName(const nlohmann::json& value);
const std::string* classNameOf(const nlohmann::json& value);

} // namespace Serialize::Json
