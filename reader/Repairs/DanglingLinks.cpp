#include "Reader/Document.h"
#include "Repairs/Makers.h"
#include "Serialize/Json/FlatObject.h"

#include <algorithm>
#include <vector>

using nlohmann::json;

namespace Repairs {
namespace {

/// The members of entries without which the entry is of no use.
constexpr const char* entryKeys[] = {"clip", "slave", "transition"};

/// The same in a flat document: lists lose the entry, members become null.
class DanglingLinks : public JsonRepair {
public:
    bool find(Reader::JsonDocument& document, const Place&) override {
        for (const auto& [id, object] : document.flat.objects) {
            if (holdsDangling(document, object))
                m_ids.push_back(id);
        }
        return !m_ids.empty();
    }

    void repair(Reader::JsonDocument& document, Changes& changes) override {
        std::size_t cleared = 0;
        for (const unsigned long long id : m_ids) {
            json& object = document.flat.objects.at(id);
            changes.note(id, object);
            cleared += clear(document, object);
        }
        changes.describe(counted(cleared, "reference") + " to objects that are missing " +
                         (cleared == 1 ? "was" : "were") + " cleared");
    }

private:
    static bool isDangling(const Reader::JsonDocument& document, const json& value) {
        const unsigned long long target = Reader::linkTarget(value);
        return target != 0 && document.flat.objects.count(target) == 0;
    }

    /// Whether a list's entry is such a reference, or has one where it must not be missing.
    static bool isUseless(const Reader::JsonDocument& document, const json& entry) {
        return isDangling(document, entry) ||
               std::any_of(std::begin(entryKeys), std::end(entryKeys), [&](const char* key) {
                   return entry.is_object() && entry.contains(key) && isDangling(document, entry[key]);
               });
    }

    static bool holdsDangling(const Reader::JsonDocument& document, const json& object) {
        std::vector<const json*> open = {&object};
        while (!open.empty()) {
            const json& value = *open.back();
            open.pop_back();
            if (isDangling(document, value))
                return true;
            if (value.is_structured()) {
                for (const json& member : value)
                    open.push_back(&member);
            }
        }
        return false;
    }

    static std::size_t clear(const Reader::JsonDocument& document, json& object) {
        std::size_t cleared = 0;
        std::vector<json*> open = {&object};
        while (!open.empty()) {
            json& value = *open.back();
            open.pop_back();
            if (value.is_array())
                cleared += std::erase_if(value.get_ref<json::array_t&>(),
                                         [&](const json& entry) { return isUseless(document, entry); });
            if (!value.is_structured())
                continue;
            for (json& member : value) {
                const bool isCleared = isDangling(document, member);
                if (isCleared)
                    member = nullptr;
                else
                    open.push_back(&member);
                cleared += isCleared ? 1 : 0;
            }
        }
        return cleared;
    }

    std::vector<unsigned long long> m_ids;
};

} // namespace

std::unique_ptr<JsonRepair> makeDanglingLinks() {
    return std::make_unique<DanglingLinks>();
}

} // namespace Repairs
