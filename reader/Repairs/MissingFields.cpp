#include "Archive/Internal/FlatObjects.h"
#include "Reader/Document.h"
#include "Repairs/Makers.h"

#include <algorithm>
#include <iterator>
#include <string>

using Archive::Internal::memberOf;
using nlohmann::json;

namespace Repairs {
namespace {

enum class Kind { Text, Flag, Number };

/// A field without which a step fails, and what it means where it is missing.
struct Field {
    const char* className;
    const char* name;
    Kind kind;
    int value; ///< of a flag or a number; a text is empty
};

// clang-format off
constexpr Field fields[] = {
    {"Timeline::Track", "used", Kind::Flag, 1},
    {"Timeline::Track", "hidden", Kind::Flag, 0},
    {"Timeline::Clip", "type", Kind::Number, 1}, // a video
    {"File", "path", Kind::Text, 0},
    {"Stabilization::Object", "pathOriginal", Kind::Text, 0},
    {"Stabilization::Object", "pathStabilized", Kind::Text, 0},
    {"Effect::BackgroundRemove", "aiModelPath", Kind::Text, 0},
    {"Effect::AudioAiDenoise", "aiModelPath", Kind::Text, 0},
};
// clang-format on

bool isMissing(const json& object, const Field& field) {
    const json& value = memberOf(object, field.name);
    switch (field.kind) {
    case Kind::Text:
        return !value.is_string();
    case Kind::Flag:
        return !value.is_boolean();
    case Kind::Number:
        break;
    }
    return !value.is_number();
}

json defaultOf(const Field& field) {
    switch (field.kind) {
    case Kind::Text:
        return "";
    case Kind::Flag:
        return field.value != 0;
    case Kind::Number:
        break;
    }
    return field.value;
}

/// Adds fields that steps read without looking whether they are there.
class MissingFields : public JsonRepair {
public:
    bool find(Reader::JsonDocument& document, const Place& place) override {
        // Version 77 itself makes a track without `used`, so its fields count before it only.
        const bool isForPaths = place.before == "PortableLoadAdaptor";
        for (const auto& [id, object] : document.flat.objects) {
            const std::string* className = Serialize::Json::classNameOf(object);
            for (const Field& field : fields) {
                const bool isPath = field.kind == Kind::Text;
                if (isPath == isForPaths && className && *className == field.className &&
                    isMissing(object, field))
                    m_missing.push_back({id, &field});
            }
        }
        return !m_missing.empty();
    }

    void repair(Reader::JsonDocument& document, Changes& changes) override {
        for (const auto& [id, field] : m_missing) {
            json& object = document.flat.objects.at(id);
            object[field->name] = defaultOf(*field);
            changes.note(id, object);
        }
        changes.describe(counted(m_missing.size(), "field") + " that " +
                         (m_missing.size() == 1 ? "was" : "were") + " missing got the usual value");
    }

private:
    struct Missing {
        unsigned long long id;
        const Field* field;
    };

    std::vector<Missing> m_missing;
};

} // namespace

std::unique_ptr<JsonRepair> makeMissingFields() {
    return std::make_unique<MissingFields>();
}

} // namespace Repairs
