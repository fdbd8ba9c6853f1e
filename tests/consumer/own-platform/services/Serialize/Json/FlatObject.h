#pragma once

#include <QString>

#include <nlohmann/json.hpp>

#include <map>
#include <optional>
#include <set>
#include <string>

inline void to_json(nlohmann::json& target, const QString& text) {
    target = text.toStdString();
}

/// The editor's flat document.
namespace Serialize::Json {

using ::to_json;

struct MetaDetails {
    inline static const std::string s_meta = "@meta";
    inline static const std::string s_object_id = "object_id";
    inline static const std::string s_class_name = "class_name";
    inline static const std::string s_meta_reference = "@meta_reference";
};

struct FlatObject {
    inline static int made = 0; ///< objects that createObject() added to any document

    std::map<unsigned long long, nlohmann::json> objects;

    nlohmann::json* createObject(const std::string& className);
    nlohmann::json createRef(const nlohmann::json& object) const;
    nlohmann::json createRef(const nlohmann::json* object) const;
    nlohmann::json createRef(unsigned long long id) const;
    nlohmann::json* firstObjectByClassName(const std::string& className);
    std::set<nlohmann::json*> objectsByClassName(const std::string& className);
    std::set<nlohmann::json*> objectsByClassNames(const std::set<std::string>& classNames);
};

std::optional<unsigned long long> toId(const nlohmann::json& value);
std::optional<unsigned long long> getObjectId(const nlohmann::json& value);
std::optional<unsigned long long> getReferenceObjectId(const nlohmann::json& value);
std::optional<unsigned long long> getAnyObjectId(const nlohmann::json& value);
std::optional<std::string> getClassName(const nlohmann::json& value);
const std::string* classNameOf(const nlohmann::json& value);

} // namespace Serialize::Json
