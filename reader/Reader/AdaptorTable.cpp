#include "Reader/AdaptorTable.h"

#include "Adaptors/ImportDescriptionAdaptor.h"
#include "Adaptors/OverlayFileContentReadAdaptor.h"
#include "Adaptors/OverlayFileContentWriteAdaptor.h"
#include "Adaptors/Project/CollectionItemPreviewUrlsAdaptor.h"
#include "Adaptors/Project/PortableLoadAdaptor.h"
#include "Adaptors/Project/PortableSaveAdaptor.h"
#include "Adaptors/Project/V11_PopArtPresetAdaptor.h"
#include "Adaptors/Project/V12_ClipPreviewAdaptor.h"
#include "Adaptors/Project/V13_PictureInPictureAdaptor.h"
#include "Adaptors/Project/V14_CropEffectAdaptor.h"
#include "Adaptors/Project/V15_SvgRetainFeatureAdaptor.h"
#include "Adaptors/Project/V15_TwoPassStabilizationAdaptor.h"
#include "Adaptors/Project/V16_PanZoomAdaptor.h"
#include "Adaptors/Project/V17_TitleAdaptorSunLabel.h"
#include "Adaptors/Project/V18_AudioEffectToFilterAdaptor.h"
#include "Adaptors/Project/V18_NoiseRemovalAdaptor.h"
#include "Adaptors/Project/V20_HighlightConcealAdaptor.h"
#include "Adaptors/Project/V21_KeepAspectAdaptor.h"
#include "Adaptors/Project/V21_PresetTypeAdaptor.h"
#include "Adaptors/Project/V22_TransitionsAdaptor.h"
#include "Adaptors/Project/V23_EffectTransitionIdToStringAdaptor.h"
#include "Adaptors/Project/V24_CompositionRemoveAdaptor.h"
#include "Adaptors/Project/V25_OverlayAnimationAdaptor.h"
#include "Adaptors/Project/V25_TransitionTypeResourceAdaptor.h"
#include "Adaptors/Project/V26_VideoResizeMethodAdaptor.h"
#include "Adaptors/Project/V27_MultitrackAdaptor.h"
#include "Adaptors/Project/V28_ClipLabelAdaptor.h"
#include "Adaptors/Project/V29_ClipTimingModeAdaptor.h"
#include "Adaptors/Project/V32_ColorFiltersAdaptor.h"
#include "Adaptors/Project/V33_EffectIntensityAdaptor.h"
#include "Adaptors/Project/V34_NoPreviewAdaptor.h"
#include "Adaptors/Project/V35_UserCollectionAdaptor.h"
#include "Adaptors/Project/V36_UnlimitedIntroAdaptor.h"
#include "Adaptors/Project/V37_UnusedBlindsAndRippleParamsAdaptor.h"
#include "Adaptors/Project/V38_OverlayDropShadowAdaptor.h"
#include "Adaptors/Project/V40_RemoveQuizFromOverlayAdaptor.h"
#include "Adaptors/Project/V41_CutawayToPictureInPictureAdaptor.h"
#include "Adaptors/Project/V42_SideBySideTransformAdaptor.h"
#include "Adaptors/Project/V44_StringPtrToStringAdaptor.h"
#include "Adaptors/Project/V46_GaplessTrackAdaptor.h"
#include "Adaptors/Project/V46_TransitionToClipPairAdaptor.h"
#include "Adaptors/Project/V47_TransitionDurationAdaptor.h"
#include "Adaptors/Project/V48_OldPortablePathAdaptor.h"
#include "Adaptors/Project/V49_ImportRemoteSizeAdaptor.h"
#include "Adaptors/Project/V4_EffectNamespaceAdaptor.h"
#include "Adaptors/Project/V4_TrackValueAdaptor.h"
#include "Adaptors/Project/V4_TransposeEffectAdaptor.h"
#include "Adaptors/Project/V50_OverlayItemTextEncode.h"
#include "Adaptors/Project/V51_ClipTrackingAdaptor.h"
#include "Adaptors/Project/V51_MaskEffectAdaptor.h"
#include "Adaptors/Project/V52_SpeedCompensationAdaptor.h"
#include "Adaptors/Project/V53_TrackingLinkAdaptor.h"
#include "Adaptors/Project/V54_TransitionVolumeAdaptor.h"
#include "Adaptors/Project/V55_AudioEffectsGroupIdAdaptor.h"
#include "Adaptors/Project/V55_AudioEffectsIntensityAdaptor.h"
#include "Adaptors/Project/V55_AudioNormalizationEffectAdaptor.h"
#include "Adaptors/Project/V55_EffectBypassAdaptor.h"
#include "Adaptors/Project/V56_LutUniqueIdAdaptor.h"
#include "Adaptors/Project/V56_ResourceTableAdaptor.h"
#include "Adaptors/Project/V57_NoiseGateEffectRangeAdaptor.h"
#include "Adaptors/Project/V57_ProjectPersistentObjectAdaptor.h"
#include "Adaptors/Project/V58_EffectAuxResourceAdaptor.h"
#include "Adaptors/Project/V59_EffectAuxResourceDownloadingAdaptor.h"
#include "Adaptors/Project/V5_EnumcastAdaptor.h"
#include "Adaptors/Project/V5_PresetSettingsAdaptor.h"
#include "Adaptors/Project/V60_CollectionItemDescriptionAdaptor.h"
#include "Adaptors/Project/V61_EffectProcessedRangeAdaptor.h"
#include "Adaptors/Project/V62_CollectionItemPayloadAdaptor.h"
#include "Adaptors/Project/V63_LutEffectAuxResourceAdaptor.h"
#include "Adaptors/Project/V64_OverlayPayloadFontDirAdaptor.h"
#include "Adaptors/Project/V64_OverlayResourceInfoAdaptor.h"
#include "Adaptors/Project/V67_ClipCollectionItemInfoAdaptor.h"
#include "Adaptors/Project/V68_ManualEnhanceEffectAdaptor.h"
#include "Adaptors/Project/V69_RemoveQuizzesAdaptor.h"
#include "Adaptors/Project/V71_ImportBlendAndTransformAdaptor.h"
#include "Adaptors/Project/V72_TrackTypeAdaptor.h"
#include "Adaptors/Project/V77_TitlesTrackAdaptor.h"
#include "Adaptors/Project/V77_TrackLevelAdaptor.h"
#include "Adaptors/Project/V77_TrackUsedAdaptor.h"
#include "Adaptors/Project/V7_PenEnableAdaptor.h"
#include "Adaptors/Project/V8_ChromaKeyPiPAdaptor.h"
#include "Adaptors/Project/V9_StabilizationAdaptor.h"
#include "Adaptors/ThemeTransitionsAndSceneAdaptor.h"

#include <algorithm>
#include <iterator>
#include <type_traits>

using Bundle::Backend;

namespace Reader {
namespace {

/// The name of a class without its namespace, taken from the compiler's name for this function: "... [with
/// Adaptor = Project::V28_ClipLabelAdaptor; ...]".
template <class Adaptor>
constexpr std::string_view classNameOf() {
    constexpr std::string_view key = "Adaptor = ";
    std::string_view name = __PRETTY_FUNCTION__;
    name.remove_prefix(name.find(key) + key.size());
    name = name.substr(0, name.find_first_of(";]"));
    return name.substr(name.rfind(':') + 1);
}
static_assert(classNameOf<Project::V28_ClipLabelAdaptor>() == "V28_ClipLabelAdaptor");
static_assert(classNameOf<ImportDescriptionAdaptor>() == "ImportDescriptionAdaptor");

template <class Adaptor>
std::unique_ptr<Adaptor> make(const AdaptorContext& context) {
    if constexpr (std::is_same_v<Adaptor, OverlayFileContentReadAdaptor>)
        return std::make_unique<Adaptor>(context.readSideFile);
    else if constexpr (std::is_same_v<Adaptor, OverlayFileContentWriteAdaptor>)
        return std::make_unique<Adaptor>(context.writeSideFile);
    else if constexpr (std::is_constructible_v<Adaptor, const QString&, const Bundle::PortableFolders&>)
        return std::make_unique<Adaptor>(context.location, context.folders);
    else
        return std::make_unique<Adaptor>();
}

/// A function that creates the adaptor in that form; null if it has no such form.
template <class Form, class Adaptor>
constexpr auto maker() -> std::unique_ptr<Form> (*)(const AdaptorContext&) {
    if constexpr (std::is_base_of_v<Form, Adaptor>)
        return [](const AdaptorContext& context) -> std::unique_ptr<Form> { return make<Adaptor>(context); };
    else
        return nullptr;
}

template <class Adaptor>
constexpr AdaptorRow row(Stage stage, int number, std::string_view summary) {
    return {stage,
            number,
            classNameOf<Adaptor>(),
            summary,
            maker<Bundle::XmlStep, Adaptor>(),
            maker<Bundle::JsonStep, Adaptor>()};
}

template <class Adaptor>
constexpr AdaptorRow step(int number, std::string_view summary) {
    return row<Adaptor>(Stage::Step, number, summary);
}

template <class Adaptor>
constexpr AdaptorRow adaptor(Stage stage, std::string_view summary) {
    return row<Adaptor>(stage, 0, summary);
}

// Steps are sorted by number, then by class name. Exception: those of version 77 are in the order in which
// they depend on each other.
// clang-format off
constexpr AdaptorRow table[] = {
    adaptor<OverlayFileContentReadAdaptor>(Stage::AfterLoading, "After loading: texts of overlays come back from side files."),
    adaptor<ThemeTransitionsAndSceneAdaptor>(Stage::BeforeSteps, "On every archive before the first step: older themes come up to date."),
    step<Project::V4_EffectNamespaceAdaptor>(4, "Effect and transition classes move into namespaces."),
    step<Project::V4_TrackValueAdaptor>(4, "Clips on the tracks 1 to 5 lie on the tracks 16, 48, 64, 80 and 96."),
    step<Project::V4_TransposeEffectAdaptor>(4, "A clip's angle becomes an effect that turns it."),
    step<Project::V5_EnumcastAdaptor>(5, "Enumerated fields of transitions and effects are stored as signed numbers."),
    step<Project::V5_PresetSettingsAdaptor>(5, "Stock presets store the settings that their tag implied."),
    step<Project::V7_PenEnableAdaptor>(7, "Outlines can be switched off."),
    step<Project::V8_ChromaKeyPiPAdaptor>(8, "Clips with a chroma key get a cutaway besides."),
    step<Project::V9_StabilizationAdaptor>(9, "Clips keep the path of their source file as their original path."),
    step<Project::V11_PopArtPresetAdaptor>(11, "Pop art effects get the preset that their tag implied."),
    step<Project::V12_ClipPreviewAdaptor>(12, "The preview image of a clip becomes an object of its own."),
    step<Project::V13_PictureInPictureAdaptor>(13, "Picture-in-picture effects hold their place as a matrix and no longer fade."),
    step<Project::V14_CropEffectAdaptor>(14, "Crop effects hold a matrix in place of a rectangle."),
    step<Project::V15_SvgRetainFeatureAdaptor>(15, "The solid white gradient of titles keeps its colours."),
    step<Project::V15_TwoPassStabilizationAdaptor>(15, "Stabilized clips get a stabilization object with settings in place of two paths."),
    step<Project::V16_PanZoomAdaptor>(16, "Zoom and pan-and-zoom effects become crop envelopes of their clips."),
    step<Project::V17_TitleAdaptorSunLabel>(17, "The two items of the title SunLabel change order."),
    step<Project::V18_AudioEffectToFilterAdaptor>(18, "Equalizers and noise reductions become audio filters."),
    step<Project::V18_NoiseRemovalAdaptor>(18, "Noise reductions and noise gates become noise suppressions."),
    step<Project::V20_HighlightConcealAdaptor>(20, "Mask effects become highlight or conceal effects with a list of frames."),
    step<Project::V21_KeepAspectAdaptor>(21, "Transformations lose their aspect flag."),
    step<Project::V21_PresetTypeAdaptor>(21, "Overlay presets get a type and their items features; outline colours move into the SVG texts."),
    step<Project::V22_TransitionsAdaptor>(22, "Transitions take half their length from each of the two clips around them."),
    step<Project::V23_EffectTransitionIdToStringAdaptor>(23, "Numbers of effects and transitions become resource identifiers."),
    step<Project::V24_CompositionRemoveAdaptor>(24, "Files lose their composition with its markers and ranges."),
    step<Project::V25_OverlayAnimationAdaptor>(25, "Overlay items get an envelope for their movement."),
    step<Project::V25_TransitionTypeResourceAdaptor>(25, "Transitions get the type 0 and an empty list of resources."),
    step<Project::V26_VideoResizeMethodAdaptor>(26, "Videos lose their resize mode."),
    step<Project::V27_MultitrackAdaptor>(27, "Timelines get six track objects, and clips refer to the track they lie on."),
    step<Project::V28_ClipLabelAdaptor>(28, "Clips get an empty list of labels."),
    step<Project::V29_ClipTimingModeAdaptor>(29, "Clip timings get the timing mode 0."),
    step<Project::V32_ColorFiltersAdaptor>(32, "Each automatic colour correction becomes an effect of its own."),
    step<Project::V33_EffectIntensityAdaptor>(33, "Every effect gets an intensity; eight effects fold their own strength into it."),
    step<Project::V34_NoPreviewAdaptor>(34, "Previews of clips are no longer saved."),
    step<Project::V35_UserCollectionAdaptor>(35, "The project gets a user collection and a new root above the timeline."),
    step<Project::V36_UnlimitedIntroAdaptor>(36, "Clips of the types 8 and 16 are no longer of unlimited duration."),
    step<Project::V37_UnusedBlindsAndRippleParamsAdaptor>(37, "Ripple and blinds transitions lose a field that nothing uses."),
    step<Project::V38_OverlayDropShadowAdaptor>(38, "Overlay items get a drop shadow, switched off."),
    step<Project::V40_RemoveQuizFromOverlayAdaptor>(40, "Quizzes become objects of their own instead of overlays."),
    step<Project::V41_CutawayToPictureInPictureAdaptor>(41, "Cutaways become picture-in-picture effects that fill the frame."),
    step<Project::V42_SideBySideTransformAdaptor>(42, "Side-by-side effects get the matrices that their mode implied."),
    step<Project::V44_StringPtrToStringAdaptor>(44, "Strings that could be null become plain strings."),
    step<Project::V46_GaplessTrackAdaptor>(46, "Tracks say whether they are kept without gaps."),
    step<Project::V46_TransitionToClipPairAdaptor>(46, "Timelines list their transitions, each with the two clips that it joins."),
    step<Project::V47_TransitionDurationAdaptor>(47, "Transitions get the default duration 2000."),
    step<Project::V48_OldPortablePathAdaptor>(48, "Old portable paths become the paths themselves."),
    step<Project::V49_ImportRemoteSizeAdaptor>(49, "Imports get an unknown remote size."),
    step<Project::V50_OverlayItemTextEncode>(50, "Texts of overlay items are stored as base64."),
    step<Project::V51_ClipTrackingAdaptor>(51, "Clips get an empty list of motion trackings."),
    step<Project::V51_MaskEffectAdaptor>(51, "The highlight and conceal effects of a clip are merged into one mask effect."),
    step<Project::V52_SpeedCompensationAdaptor>(52, "Clip timings get the flag for speed compensation, off."),
    step<Project::V53_TrackingLinkAdaptor>(53, "Timelines get an empty list of tracking links."),
    step<Project::V54_TransitionVolumeAdaptor>(54, "Transitions get the volume 100."),
    step<Project::V55_AudioEffectsGroupIdAdaptor>(55, "Audio effects that share their group's identity get one of their own."),
    step<Project::V55_AudioEffectsIntensityAdaptor>(55, "Phone and pitch presets get an intensity."),
    step<Project::V55_AudioNormalizationEffectAdaptor>(55, "Normalized clips get a normalization effect."),
    step<Project::V55_EffectBypassAdaptor>(55, "Effects can be bypassed; none is yet."),
    step<Project::V56_LutUniqueIdAdaptor>(56, "Generic LUT effects are named after their cube."),
    step<Project::V56_ResourceTableAdaptor>(56, "The project gets an empty table of its resources."),
    step<Project::V57_NoiseGateEffectRangeAdaptor>(57, "Noise gates are set by their intensity instead of a range."),
    step<Project::V57_ProjectPersistentObjectAdaptor>(57, "Content and resource table move into a new root."),
    step<Project::V58_EffectAuxResourceAdaptor>(58, "Effects get an empty auxiliary resource."),
    step<Project::V59_EffectAuxResourceDownloadingAdaptor>(59, "Effects get place, address and size of their auxiliary resource."),
    step<Project::V60_CollectionItemDescriptionAdaptor>(60, "Effects, transitions, overlays and imports are described by their tag."),
    step<Project::V61_EffectProcessedRangeAdaptor>(61, "Effects get the range that they work on, which is the whole."),
    step<Project::V62_CollectionItemPayloadAdaptor>(62, "Collection items take over the download of the object they hold."),
    adaptor<ImportDescriptionAdaptor>(Stage::BeforeConversion, "On every archive before the conversion: imports without a description's address get an empty one."),
    step<Project::V63_LutEffectAuxResourceAdaptor>(63, "The cube of a LUT becomes its auxiliary resource."),
    step<Project::V64_OverlayPayloadFontDirAdaptor>(64, "Overlays get an empty folder of fonts."),
    step<Project::V64_OverlayResourceInfoAdaptor>(64, "Overlay items get an empty list of resources."),
    step<Project::V67_ClipCollectionItemInfoAdaptor>(67, "Clips get an empty collection item info."),
    step<Project::V68_ManualEnhanceEffectAdaptor>(68, "The parameters of manual enhance move to a common scale from -1 to 1."),
    step<Project::V69_RemoveQuizzesAdaptor>(69, "Quiz clips leave the timelines; a title keeps the length."),
    step<Project::V71_ImportBlendAndTransformAdaptor>(71, "Imports get a blending mode and the identity as transform."),
    step<Project::V72_TrackTypeAdaptor>(72, "Track types become bit values."),
    step<Project::V77_TrackUsedAdaptor>(77, "Unused and empty tracks leave their timeline."),
    step<Project::V77_TitlesTrackAdaptor>(77, "Titles move from the primary track to a titles track."),
    step<Project::V77_TrackLevelAdaptor>(77, "Each level of a track becomes a track of its own."),
    adaptor<Project::PortableLoadAdaptor>(Stage::AfterSteps, "After loading: paths become absolute paths of this machine."),
    adaptor<Project::PortableSaveAdaptor>(Stage::BeforeSaving, "Before saving: paths become markers and paths relative to the project."),
    adaptor<OverlayFileContentWriteAdaptor>(Stage::BeforeBundling, "Before saving: texts of overlays move out to side files."),
    adaptor<Project::CollectionItemPreviewUrlsAdaptor>(Stage::OnRequest, "Collection items lose their list of previews; for lists gone wrong."),
};
// clang-format on

} // namespace

std::span<const AdaptorRow> adaptorTable() {
    return table;
}

const AdaptorRow* findAdaptor(std::string_view className) {
    constexpr std::string_view qualifier = "Project::";
    if (className.starts_with(qualifier))
        className.remove_prefix(qualifier.size());
    const auto* found = std::find_if(std::begin(table), std::end(table),
                                     [&](const AdaptorRow& row) { return row.className == className; });
    return found == std::end(table) ? nullptr : found;
}

std::vector<const AdaptorRow*> adaptorsOf(Stage stage) {
    std::vector<const AdaptorRow*> rows;
    for (const AdaptorRow& row : table) {
        if (row.stage == stage)
            rows.push_back(&row);
    }
    return rows;
}

std::vector<const AdaptorRow*> stepsFor(Backend form, int from, int to) {
    std::vector<const AdaptorRow*> steps;
    for (const AdaptorRow& row : table) {
        const bool isForm = form == Backend::Json || row.hasXml();
        if (row.isStep() && row.number > from && row.number <= to && isForm)
            steps.push_back(&row);
    }
    return steps;
}

std::vector<const AdaptorRow*> stepsToRun(Backend form, int from, int to) {
    std::vector<const AdaptorRow*> steps;
    if (form == Backend::Xml) {
        steps = stepsFor(Backend::Xml, from, std::min(to, lastXmlVersion));
        from = std::max(from, lastXmlVersion);
    }
    for (const AdaptorRow* step : stepsFor(Backend::Json, from, to)) {
        if (step->hasJson())
            steps.push_back(step);
    }
    return steps;
}

} // namespace Reader
