#include "Archive/Json.h"

#include "Archive/Internal/JsonValues.h"

#include <stdexcept>
#include <string>

using nlohmann::json;
using Serialize::Json::FlatObject;
using Serialize::Json::MetaDetails;

namespace Archive {

json* cloneObject(FlatObject& document, json* object) {
    const auto className = object ? Serialize::Json::getClassName(*object) : std::nullopt;
    if (!className)
        throw std::invalid_argument("Have not class_name tag in json object");
    json* clone = document.createObject(*className);
    const unsigned long long id = Serialize::Json::getObjectId(*clone).value();
    *clone = Internal::copied(*object);
    (*clone)[MetaDetails::s_meta][MetaDetails::s_object_id] = id;
    return clone;
}

json* cloneObject(FlatObject& document, unsigned long long id) {
    const auto it = document.objects.find(id);
    return it == document.objects.end() ? nullptr : cloneObject(document, &it->second);
}

json createRef(FlatObject& document, const Stored::V14::Transform& transform) {
    json* object = document.createObject("Types::Transform");
    for (const auto& field : Stored::V14::transformFields)
        (*object)[field.name] = transform.*field.member;
    return document.createRef(object);
}

void renameChild(json& object, std::string_view oldName, std::string_view newName) {
    const auto it = object.find(std::string(oldName));
    if (it == object.end())
        return;
    json value = std::move(*it);
    object[std::string(newName)] = std::move(value);
    object.erase(it); // Quirk: also if both names are equal: then the value is lost
}

} // namespace Archive
