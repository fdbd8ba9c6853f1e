#include "Archive/Internal/FlatObjects.h"
#include "Reader/Document.h"
#include "Repairs/Makers.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <string>

using Archive::Internal::memberOf;
using nlohmann::json;
using Serialize::Json::getAnyObjectId;

namespace Repairs {
namespace {

constexpr const char* itemClass = "Collection::Item";
constexpr std::string_view oldItemClass = "Collection::PersistentItem";

constexpr long long unknownSize = -1;

/// Classes that have a path from version 62 on. Those with a file had it in `location` before.
constexpr const char* classesWithPath[] = {
    "Import::Object",
    "Effect::Object",
    "Transition::Object",
    "Overlay::Preset",
    "Quiz::Preset",
    "Theme::Object",
    "Envelope::TransformationPreset",
};

std::string classOf(const json& object) {
    return Serialize::Json::getClassName(object).value_or(std::string());
}

bool lacksPath(const json& object) {
    const std::string name = classOf(object);
    return std::any_of(std::begin(classesWithPath), std::end(classesWithPath),
                       [&](const char* candidate) { return name == candidate; }) &&
           !memberOf(object, "resourcePath").is_string();
}

bool isOldItem(const json& object) {
    return classOf(object).starts_with(oldItemClass);
}

/// Does for JSON what version 62 does for archives: it has no form for JSON.
class OldCollections : public JsonRepair {
public:
    bool find(Reader::JsonDocument& document, const Place&) override {
        for (const auto& [id, object] : document.flat.objects) {
            if (lacksPath(object) || isOldItem(object))
                m_ids.push_back(id);
        }
        return !m_ids.empty();
    }

    void repair(Reader::JsonDocument& document, Changes& changes) override {
        std::size_t items = 0;
        for (const unsigned long long id : m_ids) {
            json& object = document.flat.objects.at(id);
            changes.note(id, object);
            if (isOldItem(object)) {
                convertItem(document, object);
                ++items;
            }
        }
        // Only now: items take over the download of what they hold.
        for (const unsigned long long id : m_ids) {
            json& object = document.flat.objects.at(id);
            if (lacksPath(object))
                addPath(object);
        }
        changes.describe(counted(items, "item") + " of collections and " +
                         counted(m_ids.size() - items, "other object") +
                         " were brought to the classes of version 62");
    }

private:
    static void convertItem(const Reader::JsonDocument& document, json& item) {
        const json held = memberOf(item, "item");
        const json& holder = downloadOf(document, held);
        const json& url = memberOf(holder, "remoteUrl");
        const json& size = memberOf(holder, "remoteSize");
        item["@meta"]["class_name"] = itemClass;
        item["payload"] = held;
        item.erase("item");
        item["downloadUrl"] = url.is_string() ? url : json("");
        item["remoteSize"] = size.is_number() ? size : json(unknownSize);
    }

    /// The object, or the innermost base class part of it, that has the download; null if there is none.
    static const json& downloadOf(const Reader::JsonDocument& document, const json& reference) {
        static const json none;
        const json* object = &none;
        auto id = getAnyObjectId(reference);
        std::set<unsigned long long> known;
        while (id && document.flat.objects.count(*id) > 0 && known.insert(*id).second) {
            object = &document.flat.objects.at(*id);
            id = basePartOf(document, *object);
        }
        return *object;
    }

    /// A base class part is the member that has the name of its class.
    static std::optional<unsigned long long> basePartOf(const Reader::JsonDocument& document,
                                                        const json& object) {
        for (const auto& [key, value] : object.items()) {
            const auto id = Serialize::Json::getReferenceObjectId(value);
            const auto part = id ? document.flat.objects.find(*id) : document.flat.objects.end();
            if (part != document.flat.objects.end() && classOf(part->second) == key)
                return id;
        }
        return std::nullopt;
    }

    static void addPath(json& object) {
        const json location = memberOf(object, "location");
        object.erase("location");
        object.erase("remoteUrl");
        object.erase("remoteSize");
        object["resourcePath"] = location.is_string() ? location : json("");
    }

    std::vector<unsigned long long> m_ids;
};

} // namespace

std::unique_ptr<JsonRepair> makeOldCollections() {
    return std::make_unique<OldCollections>();
}

} // namespace Repairs
