#include "Reader/Chain.h"

#include "Adaptors/Project/V15_SvgRetainFeatureAdaptor.h"
#include "Adaptors/Project/V17_TitleAdaptorSunLabel.h"
#include "Adaptors/Project/V21_KeepAspectAdaptor.h"
#include "Adaptors/Project/V25_OverlayAnimationAdaptor.h"
#include "Adaptors/Project/V28_ClipLabelAdaptor.h"
#include "Adaptors/Project/V29_ClipTimingModeAdaptor.h"
#include "Adaptors/Project/V36_UnlimitedIntroAdaptor.h"
#include "Adaptors/Project/V38_OverlayDropShadowAdaptor.h"
#include "Adaptors/Project/V40_RemoveQuizFromOverlayAdaptor.h"
#include "Adaptors/Project/V50_OverlayItemTextEncode.h"
#include "Adaptors/Project/V5_PresetSettingsAdaptor.h"
#include "Adaptors/Project/V64_OverlayPayloadFontDirAdaptor.h"
#include "Adaptors/Project/V64_OverlayResourceInfoAdaptor.h"
#include "Adaptors/Project/V69_RemoveQuizzesAdaptor.h"
#include "Adaptors/Project/V7_PenEnableAdaptor.h"

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
    step<Project::V5_PresetSettingsAdaptor>(5, "V5_PresetSettingsAdaptor", "Stock presets store the settings that their tag implied."),
    step<Project::V7_PenEnableAdaptor>(7, "V7_PenEnableAdaptor", "Outlines can be switched off."),
    step<Project::V15_SvgRetainFeatureAdaptor>(15, "V15_SvgRetainFeatureAdaptor", "The solid white gradient of titles keeps its colours."),
    step<Project::V17_TitleAdaptorSunLabel>(17, "V17_TitleAdaptorSunLabel", "The two items of the title SunLabel change order."),
    step<Project::V21_KeepAspectAdaptor>(21, "V21_KeepAspectAdaptor", "Transformations lose their aspect flag."),
    step<Project::V25_OverlayAnimationAdaptor>(25, "V25_OverlayAnimationAdaptor", "Overlay items get an envelope for their movement."),
    step<Project::V28_ClipLabelAdaptor>(28, "V28_ClipLabelAdaptor", "Clips get an empty list of labels."),
    step<Project::V29_ClipTimingModeAdaptor>(29, "V29_ClipTimingModeAdaptor", "Clip timings get the timing mode 0."),
    step<Project::V36_UnlimitedIntroAdaptor>(36, "V36_UnlimitedIntroAdaptor", "Clips of the types 8 and 16 are no longer of unlimited duration."),
    step<Project::V38_OverlayDropShadowAdaptor>(38, "V38_OverlayDropShadowAdaptor", "Overlay items get a drop shadow, switched off."),
    step<Project::V40_RemoveQuizFromOverlayAdaptor>(40, "V40_RemoveQuizFromOverlayAdaptor", "Quizzes become objects of their own instead of overlays."),
    step<Project::V50_OverlayItemTextEncode>(50, "V50_OverlayItemTextEncode", "Texts of overlay items are stored as base64."),
    step<Project::V64_OverlayPayloadFontDirAdaptor>(64, "V64_OverlayPayloadFontDirAdaptor", "Overlays get an empty folder of fonts."),
    step<Project::V64_OverlayResourceInfoAdaptor>(64, "V64_OverlayResourceInfoAdaptor", "Overlay items get an empty list of resources."),
    step<Project::V69_RemoveQuizzesAdaptor>(69, "V69_RemoveQuizzesAdaptor", "Quiz clips leave the timelines; a title keeps the length."),
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
