#include "Archive/Internal/JsonFields.h"

#include "Archive/Internal/FlatObjects.h"
#include "Archive/Internal/Truncate.h"

using nlohmann::json;

namespace Archive::Internal {

long long toInteger(const json& value) {
    return value.is_number_float() ? truncated<long long>(value.get<double>())
                                   : static_cast<long long>(value.get<json::number_integer_t>());
}

int toInt32(const json& value) {
    return value.is_number_float() ? truncated<int>(value.get<double>()) : value.get<int>();
}

const json::array_t& entriesOf(const json& object, const std::string& key) {
    static const json::array_t none;
    const auto* entries = memberOf(object, key).get_ptr<const json::array_t*>();
    return entries ? *entries : none;
}

json::array_t* listOf(json& object, const std::string& key) {
    const auto it = object.find(key);
    return it == object.end() ? nullptr : it->get_ptr<json::array_t*>();
}

} // namespace Archive::Internal
