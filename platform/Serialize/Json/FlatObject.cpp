#include "Serialize/Json/FlatObject.h"

#include <limits>
#include <stdexcept>

using nlohmann::json;

void to_json(json& target, const QString& text) {
    target = text.toStdString();
}

namespace Serialize::Json {
namespace {

const json* member(const json& value, const std::string& key) {
    const auto* object = value.get_ptr<const json::object_t*>();
    if (!object || object->empty())
        return nullptr;
    // Keys are sorted, and '@' sorts before all letters: the key is nearly always the first, or missing.
    const auto first = object->begin();
    const int order = first->first.compare(key);
    if (order >= 0)
        return order == 0 ? &first->second : nullptr;
    const auto it = object->find(key);
    return it == object->end() ? nullptr : &it->second;
}

const json* metaMember(const json& value, const std::string& key) {
    const json* meta = member(value, MetaDetails::s_meta);
    return meta ? member(*meta, key) : nullptr;
}

template <class Predicate>
std::set<json*> select(std::map<unsigned long long, json>& objects, Predicate matches) {
    std::set<json*> selection;
    for (auto& [id, object] : objects) {
        const std::string* name = classNameOf(object);
        if (name && matches(*name))
            selection.insert(selection.end(), &object);
    }
    return selection;
}

} // namespace

json* FlatObject::createObject(const std::string& className) {
    const unsigned long long greatest = objects.empty() ? 0 : objects.rbegin()->first;
    if (greatest == std::numeric_limits<unsigned long long>::max())
        throw std::logic_error("No object id is left in the document");
    const unsigned long long id = greatest + 1;
    json meta = json::object();
    meta[MetaDetails::s_class_name] = className;
    meta[MetaDetails::s_object_id] = id;
    json object = json::object();
    object[MetaDetails::s_meta] = std::move(meta);
    return &objects.emplace_hint(objects.end(), id, std::move(object))->second;
}

json FlatObject::createRef(const json& object) const {
    const auto id = getObjectId(object);
    return id ? createRef(*id) : json();
}

json FlatObject::createRef(const json* object) const {
    return object ? createRef(*object) : json();
}

json FlatObject::createRef(unsigned long long id) const {
    json reference = json::object();
    reference[MetaDetails::s_meta_reference] = id;
    return reference;
}

json* FlatObject::firstObjectByClassName(const std::string& className) {
    for (auto& [id, object] : objects) {
        const std::string* name = classNameOf(object);
        if (name && *name == className)
            return &object;
    }
    return nullptr;
}

std::set<json*> FlatObject::objectsByClassName(const std::string& className) {
    return select(objects, [&](const std::string& name) { return name == className; });
}

std::set<json*> FlatObject::objectsByClassNames(const std::set<std::string>& classNames) {
    return select(objects, [&](const std::string& name) { return classNames.count(name) > 0; });
}

std::optional<unsigned long long> toId(const json& value) {
    if (value.is_number_unsigned())
        return value.get<unsigned long long>();
    if (value.is_number_integer() && value.get<long long>() >= 0)
        return static_cast<unsigned long long>(value.get<long long>());
    return std::nullopt;
}

std::optional<unsigned long long> getObjectId(const json& value) {
    const json* id = metaMember(value, MetaDetails::s_object_id);
    return id ? toId(*id) : std::nullopt;
}

std::optional<unsigned long long> getReferenceObjectId(const json& value) {
    const json* target = member(value, MetaDetails::s_meta_reference);
    return target ? toId(*target) : std::nullopt;
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
    const json* name = metaMember(value, MetaDetails::s_class_name);
    return name ? name->get_ptr<const std::string*>() : nullptr;
}

} // namespace Serialize::Json
