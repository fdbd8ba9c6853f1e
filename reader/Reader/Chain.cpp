#include "Reader/Chain.h"

#include "Adaptors/Project/V21_PresetTypeAdaptor.h"
#include "Adaptors/Project/V28_ClipLabelAdaptor.h"
#include "Adaptors/Project/V29_ClipTimingModeAdaptor.h"

#include <algorithm>
#include <type_traits>

namespace Reader {
namespace {

template <class Form, class Adaptor>
constexpr auto maker() -> std::unique_ptr<Form> (*)() {
    if constexpr (std::is_base_of_v<Form, Adaptor>)
        return []() -> std::unique_ptr<Form> { return std::make_unique<Adaptor>(); };
    else
        return nullptr;
}

template <class Adaptor>
constexpr Step step(int number, std::string_view className, std::string_view summary) {
    return {number, className, summary, maker<Bundle::AbstractAdaptorXml, Adaptor>(),
            maker<Bundle::AbstractAdaptorJson, Adaptor>()};
}

// By number, then by class name; the steps of version 77 alone stand in the order in which they need each other.
// clang-format off
constexpr Step steps[] = {
    step<Project::V21_PresetTypeAdaptor>(21, "V21_PresetTypeAdaptor", "Overlay presets get a type and their items features; outline colours move into the SVG texts."),
    step<Project::V28_ClipLabelAdaptor>(28, "V28_ClipLabelAdaptor", "Clips get an empty list of labels."),
    step<Project::V29_ClipTimingModeAdaptor>(29, "V29_ClipTimingModeAdaptor", "Clip timings get the timing mode 0."),
};
// clang-format on

} // namespace

std::span<const Step> chain() {
    return steps;
}

const Step* findStep(std::string_view className) {
    constexpr std::string_view qualifier = "Project::";
    if (className.starts_with(qualifier))
        className.remove_prefix(qualifier.size());
    const auto* found = std::find_if(std::begin(steps), std::end(steps),
                                     [&](const Step& s) { return s.className == className; });
    return found == std::end(steps) ? nullptr : found;
}

} // namespace Reader
