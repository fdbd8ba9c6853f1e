#pragma once

#include <QString>

#include <nlohmann/json.hpp>

#include <map>
#include <optional>
#include <set>
#include <string>

/// Lets a text stand wherever a JSON value is expected: `json value = QString(...)`, stored in UTF-8.
void to_json(nlohmann::json& target, const QString& text);

namespace Serialize::Json {

using ::to_json;

/// The keys that tell what a JSON object is.
struct MetaDetails {
    inline static const std::string s_meta = "@meta";
    inline static const std::string s_object_id = "object_id";
    inline static const std::string s_class_name = "class_name";
    inline static const std::string s_meta_reference = "@meta_reference";
};

/// A document as class objects side by side, with references between them. A class object is a JSON object with
/// a "@meta" of "class_name" and "object_id"; a reference is {"@meta_reference": id}.
///
/// `objects` may be read and changed by anyone at any time, so selections look at the objects as they stand and
/// keep no index. Pointers to objects stay good while objects are added.
struct FlatObject {
    std::map<unsigned long long, nlohmann::json> objects;

    /// Adds an object with the greatest id in `objects` plus 1. Throws std::logic_error where no id is left.
    nlohmann::json* createObject(const std::string& className);

    /// The reference to an object; null for what is no class object.
    nlohmann::json createRef(const nlohmann::json& object) const;
    nlohmann::json createRef(const nlohmann::json* object) const;
    nlohmann::json createRef(unsigned long long id) const;

    /// The object of that class with the lowest id, or null.
    nlohmann::json* firstObjectByClassName(const std::string& className);

    /// All objects of exactly that class, or of one of those classes. Ordered by address.
    std::set<nlohmann::json*> objectsByClassName(const std::string& className);
    std::set<nlohmann::json*> objectsByClassNames(const std::set<std::string>& classNames);
};

/// An id is any JSON integer that is not negative.
std::optional<unsigned long long> toId(const nlohmann::json& value);

/// `object_id` of a class object.
std::optional<unsigned long long> getObjectId(const nlohmann::json& value);

/// The target of a reference.
std::optional<unsigned long long> getReferenceObjectId(const nlohmann::json& value);

/// The id of a class object or the target of a reference; the former where a value has both.
std::optional<unsigned long long> getAnyObjectId(const nlohmann::json& value);

/// `class_name` of a class object, as a copy and as a view that lives as long as the value.
std::optional<std::string> getClassName(const nlohmann::json& value);
const std::string* classNameOf(const nlohmann::json& value);

} // namespace Serialize::Json
