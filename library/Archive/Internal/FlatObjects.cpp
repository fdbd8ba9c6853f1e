#include "Archive/Internal/FlatObjects.h"

#include <stdexcept>

using nlohmann::json;
using Serialize::Json::FlatObject;

namespace Archive::Internal {

std::vector<SelectedObject> selectObjects(FlatObject& document, const std::string& className) {
    std::vector<SelectedObject> selection;
    for (auto& [id, object] : document.objects) {
        const std::string* name = Serialize::Json::classNameOf(object);
        if (name && *name == className)
            selection.push_back({id, &object});
    }
    return selection;
}

json& objectAt(FlatObject& document, unsigned long long id) {
    const auto it = document.objects.find(id);
    if (it == document.objects.end())
        throw std::out_of_range("invalid map<K, T> key");
    return it->second;
}

const json* metaOf(const json& value) {
    const auto* members = value.get_ptr<const json::object_t*>();
    if (!members || members->empty())
        return nullptr;
    // Keys are sorted, and '@' sorts before all letters: it is nearly always the first, or missing.
    const int order = members->begin()->first.compare(Serialize::Json::MetaDetails::s_meta);
    const auto meta = order < 0 ? members->find(Serialize::Json::MetaDetails::s_meta) : members->begin();
    return order > 0 || meta == members->end() ? nullptr : &meta->second;
}

const json& memberOf(const json& object, const std::string& key) {
    static const json missing;
    const auto it = object.find(key);
    return it == object.end() ? missing : *it;
}

} // namespace Archive::Internal
