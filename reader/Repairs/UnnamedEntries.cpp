#include "Archive/Internal/FlatObjects.h"
#include "Archive/Internal/JsonFields.h"
#include "Reader/Document.h"
#include "Repairs/Makers.h"

using nlohmann::json;

namespace Repairs {
namespace {

/// The names of the two parts of a list's entries.
struct EntryNames {
    const char* list;
    const char* first;
    const char* second;
};

constexpr EntryNames entryNames[] = {
    {"clips", "clip", "timing"},
    {"links", "slave", "link"},
    {"trackingLinks", "clip", "tracking"},
    {"transitions", "transition", nullptr}, // the second part is a list with the pair of clips
};

bool isUnnamed(const json& entry) {
    return entry.is_object() && entry.contains("first") && entry.contains("second");
}

/// Gives the parts of a timeline's entries their names. The conversion calls them "first" and "second" where the
/// predeclaration of a clip was wrong, and some documents were saved so.
class UnnamedEntries : public JsonRepair {
public:
    bool find(Reader::JsonDocument& document, const Place&) override {
        for (const auto& timeline : Archive::Internal::selectObjects(document.flat, "Timeline::Object")) {
            if (hasUnnamed(*timeline.object))
                m_timelines.push_back(timeline.id);
        }
        return !m_timelines.empty();
    }

    void repair(Reader::JsonDocument& document, Changes& changes) override {
        std::size_t entries = 0;
        for (const unsigned long long id : m_timelines) {
            json& timeline = document.flat.objects.at(id);
            changes.note(id, timeline);
            for (const EntryNames& names : entryNames) {
                if (auto* list = Archive::Internal::listOf(timeline, names.list))
                    entries += nameParts(document, *list, names, changes);
            }
        }
        changes.describe(std::to_string(entries) + (entries == 1 ? " entry" : " entries") +
                         " of timelines named their parts again");
    }

private:
    static bool hasUnnamed(const json& timeline) {
        for (const EntryNames& names : entryNames) {
            for (const json& entry : Archive::Internal::entriesOf(timeline, names.list)) {
                if (isUnnamed(entry))
                    return true;
            }
        }
        return false;
    }

    static std::size_t nameParts(Reader::JsonDocument& document, json::array_t& list, const EntryNames& names,
                                 Changes& changes) {
        std::size_t named = 0;
        for (json& entry : list) {
            if (!isUnnamed(entry))
                continue;
            ++named;
            json parts = json::object();
            parts[names.first] = std::move(entry["first"]);
            if (names.second)
                parts[names.second] = std::move(entry["second"]);
            else
                addPair(parts, entry["second"]);
            entry = std::move(parts);
            const auto id = Serialize::Json::getAnyObjectId(entry[names.first]).value_or(0);
            const auto object = document.flat.objects.find(id);
            if (object != document.flat.objects.end())
                changes.mention(id, object->second);
        }
        return named;
    }

    /// The two clips that a transition joins.
    static void addPair(json& parts, json& second) {
        json& pair = second.is_array() && !second.empty() ? second[0] : second;
        const bool isPair = isUnnamed(pair);
        parts["clipFrom"] = isPair ? std::move(pair["first"]) : json();
        parts["clipTo"] = isPair ? std::move(pair["second"]) : json();
    }

    std::vector<unsigned long long> m_timelines;
};

} // namespace

std::unique_ptr<JsonRepair> makeUnnamedEntries() {
    return std::make_unique<UnnamedEntries>();
}

} // namespace Repairs
