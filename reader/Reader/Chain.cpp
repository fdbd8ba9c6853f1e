#include "Reader/Chain.h"

#include "Adaptors/Project/V22_TransitionsAdaptor.h"
#include "Adaptors/Project/V23_EffectTransitionIdToStringAdaptor.h"
#include "Adaptors/Project/V25_TransitionTypeResourceAdaptor.h"
#include "Adaptors/Project/V28_ClipLabelAdaptor.h"
#include "Adaptors/Project/V29_ClipTimingModeAdaptor.h"
#include "Adaptors/Project/V37_UnusedBlindsAndRippleParamsAdaptor.h"
#include "Adaptors/Project/V54_TransitionVolumeAdaptor.h"
#include "Adaptors/Project/V5_EnumcastAdaptor.h"
#include "Adaptors/Project/V72_TrackTypeAdaptor.h"
#include "Adaptors/Project/V77_TitlesTrackAdaptor.h"
#include "Adaptors/Project/V77_TrackLevelAdaptor.h"
#include "Adaptors/Project/V77_TrackUsedAdaptor.h"

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
    step<Project::V5_EnumcastAdaptor>(5, "V5_EnumcastAdaptor", "Enumerated fields of transitions and effects are stored as signed numbers."),
    step<Project::V22_TransitionsAdaptor>(22, "V22_TransitionsAdaptor", "Transitions take half their length from each of the two clips around them."),
    step<Project::V23_EffectTransitionIdToStringAdaptor>(23, "V23_EffectTransitionIdToStringAdaptor", "Numbers of effects and transitions become resource identifiers."),
    step<Project::V25_TransitionTypeResourceAdaptor>(25, "V25_TransitionTypeResourceAdaptor", "Transitions get the type 0 and an empty list of resources."),
    step<Project::V28_ClipLabelAdaptor>(28, "V28_ClipLabelAdaptor", "Clips get an empty list of labels."),
    step<Project::V29_ClipTimingModeAdaptor>(29, "V29_ClipTimingModeAdaptor", "Clip timings get the timing mode 0."),
    step<Project::V37_UnusedBlindsAndRippleParamsAdaptor>(37, "V37_UnusedBlindsAndRippleParamsAdaptor", "Ripple and blinds transitions lose a field that nothing uses."),
    step<Project::V54_TransitionVolumeAdaptor>(54, "V54_TransitionVolumeAdaptor", "Transitions get the volume 100."),
    step<Project::V72_TrackTypeAdaptor>(72, "V72_TrackTypeAdaptor", "Track types become bit values."),
    step<Project::V77_TrackUsedAdaptor>(77, "V77_TrackUsedAdaptor", "Unused and empty tracks leave their timeline."),
    step<Project::V77_TitlesTrackAdaptor>(77, "V77_TitlesTrackAdaptor", "Titles move from the primary track to a titles track."),
    step<Project::V77_TrackLevelAdaptor>(77, "V77_TrackLevelAdaptor", "Each level of a track becomes a track of its own."),
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
