#include "Reader/WideNumbers.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <set>
#include <utility>

using nlohmann::json;
using Serialize::Json::FlatObject;

namespace Reader {
namespace {

constexpr auto none = std::numeric_limits<WideNumbers::Place>::max();

double toDouble(const std::string& digits) {
    return std::strtod(digits.c_str(), nullptr); // there is no point in it that a locale could change
}

json* partOf(json& container, const WideNumbers::Name& name) {
    if (const auto* key = std::get_if<std::string>(&name)) {
        const auto member = container.is_object() ? container.find(*key) : container.end();
        return member == container.end() ? nullptr : &*member;
    }
    const std::size_t index = std::get<std::size_t>(name);
    return container.is_array() && index < container.size() ? &container[index] : nullptr;
}

/// The values of all floating numbers in the document that are among `wanted`.
std::set<double> findDoubles(const FlatObject& flat, const std::set<double>& wanted) {
    std::set<double> found;
    std::vector<const json*> open;
    for (const auto& [id, object] : flat.objects)
        open.push_back(&object);
    while (!open.empty()) {
        const json& value = *open.back();
        open.pop_back();
        if (value.is_number_float() && wanted.count(value.get<double>()))
            found.insert(value.get<double>());
        if (value.is_structured()) {
            for (const json& part : value)
                open.push_back(&part);
        }
    }
    return found;
}

} // namespace

json wideNumber(const std::string& digits) {
    return json::binary({digits.begin(), digits.end()});
}

const json::binary_t* digitsOf(const json& value) {
    return value.get_ptr<const json::binary_t*>();
}

WideNumbers::Place WideNumbers::add(unsigned long long id) {
    m_places.push_back({none, {}, id, {}});
    return m_places.size() - 1;
}

WideNumbers::Place WideNumbers::add(Place container, Name name) {
    m_places.push_back({container, std::move(name), m_places[container].id, {}});
    return m_places.size() - 1;
}

void WideNumbers::keepDigits(Place place, json& value) {
    const json::binary_t& bytes = *digitsOf(value);
    std::string digits(bytes.begin(), bytes.end());
    value = toDouble(digits);
    m_places[place].digits = std::move(digits);
}

std::vector<MovedNumber> WideNumbers::restore(FlatObject& flat) const {
    std::vector<json*> values; // by place
    values.reserve(m_places.size());
    std::vector<Place> missing;
    for (const Part& part : m_places) {
        json* value = nullptr;
        if (part.container == none) {
            const auto object = flat.objects.find(part.id);
            value = object == flat.objects.end() ? nullptr : &object->second;
        } else if (json* container = values[part.container]) {
            value = partOf(*container, part.name);
        }
        if (!part.digits.empty()) {
            if (value && value->is_number_float() && value->get<double>() == toDouble(part.digits))
                *value = wideNumber(part.digits);
            else
                missing.push_back(values.size());
        }
        values.push_back(value);
    }

    std::vector<MovedNumber> moved;
    std::set<double> wanted;
    for (const Place place : missing)
        wanted.insert(toDouble(m_places[place].digits));
    const std::set<double> found = missing.empty() ? wanted : findDoubles(flat, wanted);
    for (const Place place : missing) {
        const Part& part = m_places[place];
        if (found.count(toDouble(part.digits)))
            moved.push_back({part.id, pathOf(place), part.digits});
    }
    return moved;
}

/// The innermost parts of a long path.
std::string WideNumbers::pathOf(Place place) const {
    constexpr int longest = 24;
    std::string path;
    for (int length = 0; m_places[place].container != none; place = m_places[place].container) {
        if (++length > longest)
            return ".../" + path;
        const Name& name = m_places[place].name;
        const auto* key = std::get_if<std::string>(&name);
        if (!path.empty())
            path.insert(0, 1, '/');
        path.insert(0, key ? *key : std::to_string(std::get<std::size_t>(name)));
    }
    return path;
}

} // namespace Reader
