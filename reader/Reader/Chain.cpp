#include "Reader/Chain.h"

#include "Adaptors/Project/V15_TwoPassStabilizationAdaptor.h"
#include "Adaptors/Project/V18_AudioEffectToFilterAdaptor.h"
#include "Adaptors/Project/V18_NoiseRemovalAdaptor.h"
#include "Adaptors/Project/V28_ClipLabelAdaptor.h"
#include "Adaptors/Project/V29_ClipTimingModeAdaptor.h"
#include "Adaptors/Project/V55_AudioEffectsGroupIdAdaptor.h"
#include "Adaptors/Project/V55_AudioEffectsIntensityAdaptor.h"
#include "Adaptors/Project/V55_AudioNormalizationEffectAdaptor.h"
#include "Adaptors/Project/V55_EffectBypassAdaptor.h"
#include "Adaptors/Project/V57_NoiseGateEffectRangeAdaptor.h"
#include "Adaptors/Project/V61_EffectProcessedRangeAdaptor.h"
#include "Adaptors/Project/V9_StabilizationAdaptor.h"

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
    step<Project::V9_StabilizationAdaptor>(9, "V9_StabilizationAdaptor", "Clips keep the path of their source file as their original path."),
    step<Project::V15_TwoPassStabilizationAdaptor>(15, "V15_TwoPassStabilizationAdaptor", "Stabilized clips get a stabilization object with settings in place of two paths."),
    step<Project::V18_AudioEffectToFilterAdaptor>(18, "V18_AudioEffectToFilterAdaptor", "Equalizers and noise reductions become audio filters."),
    step<Project::V18_NoiseRemovalAdaptor>(18, "V18_NoiseRemovalAdaptor", "Noise reductions and noise gates become noise suppressions."),
    step<Project::V28_ClipLabelAdaptor>(28, "V28_ClipLabelAdaptor", "Clips get an empty list of labels."),
    step<Project::V29_ClipTimingModeAdaptor>(29, "V29_ClipTimingModeAdaptor", "Clip timings get the timing mode 0."),
    step<Project::V55_AudioEffectsGroupIdAdaptor>(55, "V55_AudioEffectsGroupIdAdaptor", "Audio effects that share their group's identity get one of their own."),
    step<Project::V55_AudioEffectsIntensityAdaptor>(55, "V55_AudioEffectsIntensityAdaptor", "Phone and pitch presets get an intensity."),
    step<Project::V55_AudioNormalizationEffectAdaptor>(55, "V55_AudioNormalizationEffectAdaptor", "Normalized clips get a normalization effect."),
    step<Project::V55_EffectBypassAdaptor>(55, "V55_EffectBypassAdaptor", "Effects can be bypassed; none is yet."),
    step<Project::V57_NoiseGateEffectRangeAdaptor>(57, "V57_NoiseGateEffectRangeAdaptor", "Noise gates are set by their intensity instead of a range."),
    step<Project::V61_EffectProcessedRangeAdaptor>(61, "V61_EffectProcessedRangeAdaptor", "Effects get the range that they work on, which is the whole."),
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
