#include "Adaptors/Project/V72_TrackTypeAdaptor.h"

#include "Archive/Internal/FlatEditor.h"
#include "Archive/Internal/JsonFields.h"

#include <algorithm>

using nlohmann::json;

namespace Project {
namespace {

struct TrackType {
    long long before;
    int after;
};

// clang-format off
constexpr TrackType trackTypes[] = {
    {16, 1},
    {32, 2},
    {48, 4},
    {64, 8}, // also for the former track number 96, which has the type 64
    {80, 16},
};
// clang-format on

// Quirk: any other type, and one that is no number, becomes 0.
int newType(const json& type) {
    if (!type.is_number())
        return 0;
    const long long before = Archive::Internal::toInteger(type);
    const auto* row = std::ranges::find(trackTypes, before, &TrackType::before);
    return row == std::end(trackTypes) ? 0 : row->after;
}

} // namespace

void V72_TrackTypeAdaptor::convert(Archive::Internal::FlatEditor& editor) {
    for (const auto& track : editor.objects("Timeline::Track")) {
        json& type = (*track.object)["type"];
        type = newType(type);
    }
}

} // namespace Project
