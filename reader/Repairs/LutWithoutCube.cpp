#include "Archive/Internal/FlatObjects.h"
#include "Reader/Document.h"
#include "Repairs/Makers.h"

#include <string>

using Archive::Internal::memberOf;
using nlohmann::json;

namespace Repairs {
namespace {

constexpr const char* cubeField = "cubeResourceUuid";
constexpr const char* genericLut = "296139e9-c085-4e73-aacd-df41093c132a";

/// The object that a member refers to; null if there is none.
json* follow(Reader::JsonDocument& document, const json& object, const char* key) {
    const auto id = Serialize::Json::getReferenceObjectId(memberOf(object, key));
    const auto found = id ? document.flat.objects.find(*id) : document.flat.objects.end();
    return found == document.flat.objects.end() ? nullptr : &found->second;
}

/// Gives a LUT without a cube the one that it is named after, or an empty one. Version 63 can't move what is missing.
class LutWithoutCube : public JsonRepair {
public:
    bool find(Reader::JsonDocument& document, const Place&) override {
        for (const auto& lut : Archive::Internal::selectObjects(document.flat, "Effect::Lut")) {
            if (!memberOf(*lut.object, cubeField).is_string())
                m_ids.push_back(lut.id);
        }
        return !m_ids.empty();
    }

    void repair(Reader::JsonDocument& document, Changes& changes) override {
        std::size_t known = 0;
        for (const unsigned long long id : m_ids) {
            json& lut = document.flat.objects.at(id);
            const std::string cube = cubeFor(document, lut);
            lut[cubeField] = cube;
            known += cube.empty() ? 0 : 1;
            changes.note(id, lut);
        }
        changes.describe(counted(m_ids.size(), "LUT") + " had no cube: " + std::to_string(known) +
                         " got the one of its name, " + std::to_string(m_ids.size() - known) +
                         " an empty one, which changes no colours");
    }

private:
    /// From version 56 on a LUT that is not the generic one is named after its cube.
    static std::string cubeFor(Reader::JsonDocument& document, const json& lut) {
        const json* video = follow(document, lut, "Effect::VideoEffect");
        json* effect = video ? follow(document, *video, "Effect::Object") : nullptr;
        if (!effect)
            return {};
        const json& name = memberOf(*effect, "uniqueId");
        if (name.is_string() && !name.get_ref<const std::string&>().empty() && name != genericLut)
            return name.get<std::string>();
        (*effect)["uniqueId"] = genericLut; // version 56 took the missing name of the cube
        return {};
    }

    std::vector<unsigned long long> m_ids;
};

} // namespace

std::unique_ptr<JsonRepair> makeLutWithoutCube() {
    return std::make_unique<LutWithoutCube>();
}

} // namespace Repairs
