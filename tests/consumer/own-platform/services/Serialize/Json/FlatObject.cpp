#include "Serialize/Json/FlatObject.h"

using nlohmann::json;

namespace Serialize::Json {
namespace {

/// The value behind keys; null where there is none.
const json* find(const json& value, const std::string& key) {
    return value.is_object() && value.contains(key) ? &value.at(key) : nullptr;
}

const json* find(const json& value, const std::string& key, const std::string& inner) {
    const json* outer = find(value, key);
    return outer ? find(*outer, inner) : nullptr;
}

} // namespace

json* FlatObject::createObject(const std::string& className) {
    ++made;
    const unsigned long long id = objects.empty() ? 1 : objects.rbegin()->first + 1;
    json& object = objects[id];
    object[MetaDetails::s_meta] = {{MetaDetails::s_class_name, className}, {MetaDetails::s_object_id, id}};
    return &object;
}

json FlatObject::createRef(const json& object) const {
    const auto id = getObjectId(object);
    return id ? createRef(*id) : json();
}

json FlatObject::createRef(const json* object) const {
    return object ? createRef(*object) : json();
}

json FlatObject::createRef(unsigned long long id) const {
    return {{MetaDetails::s_meta_reference, id}};
}

json* FlatObject::firstObjectByClassName(const std::string& className) {
    for (auto& [id, object] : objects) {
        if (getClassName(object) == className)
            return &object;
    }
    return nullptr;
}

std::set<json*> FlatObject::objectsByClassName(const std::string& className) {
    return objectsByClassNames({className});
}

std::set<json*> FlatObject::objectsByClassNames(const std::set<std::string>& classNames) {
    std::set<json*> selection;
    for (auto& [id, object] : objects) {
        const std::string* name = classNameOf(object);
        if (name && classNames.contains(*name))
            selection.insert(&object);
    }
    return selection;
}

std::optional<unsigned long long> toId(const json& value) {
    const bool isId =
        value.is_number_integer() && (value.is_number_unsigned() || value.get<long long>() >= 0);
    return isId ? std::optional(value.get<unsigned long long>()) : std::nullopt;
}

std::optional<unsigned long long> getObjectId(const json& value) {
    const json* id = find(value, MetaDetails::s_meta, MetaDetails::s_object_id);
    return id ? toId(*id) : std::nullopt;
}

std::optional<unsigned long long> getReferenceObjectId(const json& value) {
    const json* id = find(value, MetaDetails::s_meta_reference);
    return id ? toId(*id) : std::nullopt;
}

std::optional<unsigned long long> getAnyObjectId(const json& value) {
    const auto id = getObjectId(value);
    return id ? id : getReferenceObjectId(value);
}

std::optional<std::string> getClassName(const json& value) {
    const std::string* name = classNameOf(value);
    return name ? std::optional(*name) : std::nullopt;
}

const std::string* classNameOf(const json& value) {
    const json* name = find(value, MetaDetails::s_meta, MetaDetails::s_class_name);
    return name ? name->get_ptr<const std::string*>() : nullptr;
}

} // namespace Serialize::Json
