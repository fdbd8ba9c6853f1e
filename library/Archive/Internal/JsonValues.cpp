#include "Archive/Internal/JsonValues.h"

#include <utility>
#include <vector>

using nlohmann::json;

namespace Archive::Internal {

json copied(const json& value) {
    json result;
    std::vector<std::pair<const json*, json*>> open = {{&value, &result}};
    while (!open.empty()) {
        const auto [source, target] = open.back();
        open.pop_back();
        if (const auto* list = source->get_ptr<const json::array_t*>()) {
            *target = json::array();
            auto& copies = target->get_ref<json::array_t&>();
            copies.resize(list->size());
            for (std::size_t place = 0; place < list->size(); ++place)
                open.emplace_back(&(*list)[place], &copies[place]);
        } else if (const auto* members = source->get_ptr<const json::object_t*>()) {
            *target = json::object();
            auto& copies = target->get_ref<json::object_t&>();
            for (const auto& [key, member] : *members)
                open.emplace_back(&member, &copies.emplace_hint(copies.end(), key, nullptr)->second);
        } else {
            *target = *source;
        }
    }
    return result;
}

bool areEqual(const json& left, const json& right) {
    std::vector<std::pair<const json*, const json*>> open = {{&left, &right}};
    while (!open.empty()) {
        const auto [one, other] = open.back();
        open.pop_back();
        if (!one->is_structured() || one->type() != other->type()) {
            if (!(*one == *other)) // `!=` differs from that for NaN
                return false;
            continue;
        }
        if (one->size() != other->size())
            return false;
        for (auto a = one->begin(), b = other->begin(); a != one->end(); ++a, ++b) {
            if (one->is_object() && a.key() != b.key())
                return false;
            open.emplace_back(&*a, &*b);
        }
    }
    return true;
}

} // namespace Archive::Internal
