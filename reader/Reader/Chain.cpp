#include "Reader/Chain.h"

#include "Adaptors/Project/V24_CompositionRemoveAdaptor.h"
#include "Adaptors/Project/V26_VideoResizeMethodAdaptor.h"
#include "Adaptors/Project/V27_MultitrackAdaptor.h"
#include "Adaptors/Project/V28_ClipLabelAdaptor.h"
#include "Adaptors/Project/V29_ClipTimingModeAdaptor.h"
#include "Adaptors/Project/V46_GaplessTrackAdaptor.h"
#include "Adaptors/Project/V46_TransitionToClipPairAdaptor.h"
#include "Adaptors/Project/V47_TransitionDurationAdaptor.h"
#include "Adaptors/Project/V4_TrackValueAdaptor.h"
#include "Adaptors/Project/V51_ClipTrackingAdaptor.h"
#include "Adaptors/Project/V52_SpeedCompensationAdaptor.h"
#include "Adaptors/Project/V53_TrackingLinkAdaptor.h"

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
    step<Project::V4_TrackValueAdaptor>(4, "V4_TrackValueAdaptor", "Clips on the tracks 1 to 5 lie on the tracks 16, 48, 64, 80 and 96."),
    step<Project::V24_CompositionRemoveAdaptor>(24, "V24_CompositionRemoveAdaptor", "Files lose their composition with its markers and ranges."),
    step<Project::V26_VideoResizeMethodAdaptor>(26, "V26_VideoResizeMethodAdaptor", "Videos lose their resize mode."),
    step<Project::V27_MultitrackAdaptor>(27, "V27_MultitrackAdaptor", "Timelines get six track objects, and clips refer to the track they lie on."),
    step<Project::V28_ClipLabelAdaptor>(28, "V28_ClipLabelAdaptor", "Clips get an empty list of labels."),
    step<Project::V29_ClipTimingModeAdaptor>(29, "V29_ClipTimingModeAdaptor", "Clip timings get the timing mode 0."),
    step<Project::V46_GaplessTrackAdaptor>(46, "V46_GaplessTrackAdaptor", "Tracks say whether they are kept without gaps."),
    step<Project::V46_TransitionToClipPairAdaptor>(46, "V46_TransitionToClipPairAdaptor", "Timelines list their transitions, each with the two clips that it joins."),
    step<Project::V47_TransitionDurationAdaptor>(47, "V47_TransitionDurationAdaptor", "Transitions get the default duration 2000."),
    step<Project::V51_ClipTrackingAdaptor>(51, "V51_ClipTrackingAdaptor", "Clips get an empty list of motion trackings."),
    step<Project::V52_SpeedCompensationAdaptor>(52, "V52_SpeedCompensationAdaptor", "Clip timings get the flag for speed compensation, off."),
    step<Project::V53_TrackingLinkAdaptor>(53, "V53_TrackingLinkAdaptor", "Timelines get an empty list of tracking links."),
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
