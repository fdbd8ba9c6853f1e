#include "Adaptors/Project/V63_LutEffectAuxResourceAdaptor.h"

#include "Archive/Internal/FlatEditor.h"
#include "Stored/V57/ResourceType.h"

#include <cstdint>
#include <stdexcept>
#include <string>

using namespace Archive::Internal;
using nlohmann::json;
using Serialize::Json::FlatObject;

namespace Project {
namespace {

/// As memberOf(), but throws the type error for a value that is neither an object nor null.
const json& memberOrError(const json& value, const std::string& key) {
    return value.is_object() || value.is_null() ? memberOf(value, key) : value[key];
}

std::uint64_t toId(const json& number) {
    // A fraction is cut off. A number out of range is the id of no object.
    if (number.is_number_float() && !(number.get<double>() > -1.0 && number.get<double>() < 0x1p64))
        throw std::out_of_range("invalid map<K, T> key");
    return number.get<std::uint64_t>();
}

/// The object that a base class part refers to.
json& basePart(FlatObject& document, const json& object, const std::string& baseName) {
    const json& reference = memberOrError(object, baseName);
    return objectAt(document, toId(memberOrError(reference, Serialize::Json::MetaDetails::s_meta_reference)));
}

void moveCube(FlatObject& document, json& lut) {
    const std::string cube = memberOf(lut, "cubeResourceUuid").get<std::string>();
    const json& videoEffect = basePart(document, lut, "Effect::VideoEffect");
    json& effect = basePart(document, videoEffect, "Effect::Object");
    json resource = json::object();
    resource["element_0"] = cube;
    resource["element_1"] = static_cast<std::int32_t>(Stored::V57::ResourceType::Lut);
    effect["auxResource"] = std::move(resource);
    lut.erase("cubeResourceUuid");
}

} // namespace

void V63_LutEffectAuxResourceAdaptor::convert(FlatEditor& editor) {
    for (const auto& lut : editor.objects("Effect::Lut"))
        moveCube(editor.document(), *lut.object);
}

} // namespace Project
