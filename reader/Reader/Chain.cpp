#include "Reader/Chain.h"

#include "Adaptors/Project/V16_PanZoomAdaptor.h"
#include "Adaptors/Project/V20_HighlightConcealAdaptor.h"
#include "Adaptors/Project/V28_ClipLabelAdaptor.h"
#include "Adaptors/Project/V29_ClipTimingModeAdaptor.h"
#include "Adaptors/Project/V51_MaskEffectAdaptor.h"

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
    step<Project::V16_PanZoomAdaptor>(16, "V16_PanZoomAdaptor", "Zoom and pan-and-zoom effects become crop envelopes of their clips."),
    step<Project::V20_HighlightConcealAdaptor>(20, "V20_HighlightConcealAdaptor", "Mask effects become highlight or conceal effects with a list of frames."),
    step<Project::V28_ClipLabelAdaptor>(28, "V28_ClipLabelAdaptor", "Clips get an empty list of labels."),
    step<Project::V29_ClipTimingModeAdaptor>(29, "V29_ClipTimingModeAdaptor", "Clip timings get the timing mode 0."),
    step<Project::V51_MaskEffectAdaptor>(51, "V51_MaskEffectAdaptor", "The highlight and conceal effects of a clip are merged into one mask effect."),
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
