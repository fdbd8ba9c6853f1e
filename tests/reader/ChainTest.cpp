// The table of all steps: their order, names and forms.

#include "Reader/Chain.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace {

using testing::IsEmpty;

struct Row {
    int number;
    const char* className;
    const char* forms = "X";
};

// What the format's history holds, apart from the chain itself.
// clang-format off
constexpr Row history[] = {
    {4, "V4_EffectNamespaceAdaptor"},
    {4, "V4_TrackValueAdaptor"},
    {4, "V4_TransposeEffectAdaptor"},
    {5, "V5_EnumcastAdaptor"},
    {5, "V5_PresetSettingsAdaptor"},
    {7, "V7_PenEnableAdaptor"},
    {8, "V8_ChromaKeyPiPAdaptor"},
    {9, "V9_StabilizationAdaptor"},
    {11, "V11_PopArtPresetAdaptor"},
    {12, "V12_ClipPreviewAdaptor"},
    {13, "V13_PictureInPictureAdaptor"},
    {14, "V14_CropEffectAdaptor"},
    {15, "V15_SvgRetainFeatureAdaptor"},
    {15, "V15_TwoPassStabilizationAdaptor"},
    {16, "V16_PanZoomAdaptor"},
    {17, "V17_TitleAdaptorSunLabel"},
    {18, "V18_AudioEffectToFilterAdaptor"},
    {18, "V18_NoiseRemovalAdaptor"},
    {20, "V20_HighlightConcealAdaptor"},
    {21, "V21_KeepAspectAdaptor"},
    {21, "V21_PresetTypeAdaptor"},
    {22, "V22_TransitionsAdaptor"},
    {23, "V23_EffectTransitionIdToStringAdaptor"},
    {24, "V24_CompositionRemoveAdaptor"},
    {25, "V25_OverlayAnimationAdaptor"},
    {25, "V25_TransitionTypeResourceAdaptor"},
    {26, "V26_VideoResizeMethodAdaptor"},
    {27, "V27_MultitrackAdaptor"},
    {28, "V28_ClipLabelAdaptor"},
    {29, "V29_ClipTimingModeAdaptor"},
    {32, "V32_ColorFiltersAdaptor"},
    {33, "V33_EffectIntensityAdaptor"},
    {34, "V34_NoPreviewAdaptor"},
    {35, "V35_UserCollectionAdaptor"},
    {36, "V36_UnlimitedIntroAdaptor"},
    {37, "V37_UnusedBlindsAndRippleParamsAdaptor"},
    {38, "V38_OverlayDropShadowAdaptor"},
    {40, "V40_RemoveQuizFromOverlayAdaptor"},
    {41, "V41_CutawayToPictureInPictureAdaptor"},
    {42, "V42_SideBySideTransformAdaptor"},
    {44, "V44_StringPtrToStringAdaptor"},
    {46, "V46_GaplessTrackAdaptor"},
    {46, "V46_TransitionToClipPairAdaptor"},
    {47, "V47_TransitionDurationAdaptor"},
    {48, "V48_OldPortablePathAdaptor"},
    {49, "V49_ImportRemoteSizeAdaptor"},
    {50, "V50_OverlayItemTextEncode"},
    {51, "V51_ClipTrackingAdaptor"},
    {51, "V51_MaskEffectAdaptor"},
    {52, "V52_SpeedCompensationAdaptor"},
    {53, "V53_TrackingLinkAdaptor"},
    {54, "V54_TransitionVolumeAdaptor"},
    {55, "V55_AudioEffectsGroupIdAdaptor"},
    {55, "V55_AudioEffectsIntensityAdaptor"},
    {55, "V55_AudioNormalizationEffectAdaptor"},
    {55, "V55_EffectBypassAdaptor"},
    {56, "V56_LutUniqueIdAdaptor"},
    {56, "V56_ResourceTableAdaptor"},
    {57, "V57_NoiseGateEffectRangeAdaptor"},
    {57, "V57_ProjectPersistentObjectAdaptor"},
    {58, "V58_EffectAuxResourceAdaptor"},
    {59, "V59_EffectAuxResourceDownloadingAdaptor"},
    {60, "V60_CollectionItemDescriptionAdaptor", "XJ"},
    {61, "V61_EffectProcessedRangeAdaptor", "XJ"},
    {62, "V62_CollectionItemPayloadAdaptor"},
    {63, "V63_LutEffectAuxResourceAdaptor", "J"},
    {64, "V64_OverlayPayloadFontDirAdaptor", "J"},
    {64, "V64_OverlayResourceInfoAdaptor", "J"},
    {67, "V67_ClipCollectionItemInfoAdaptor", "J"},
    {68, "V68_ManualEnhanceEffectAdaptor", "J"},
    {69, "V69_RemoveQuizzesAdaptor", "J"},
    {71, "V71_ImportBlendAndTransformAdaptor", "J"},
    {72, "V72_TrackTypeAdaptor", "J"},
    {77, "V77_TrackUsedAdaptor", "J"},
    {77, "V77_TitlesTrackAdaptor", "J"},
    {77, "V77_TrackLevelAdaptor", "J"},
};
// clang-format on

const Row* rowOf(std::string_view className) {
    const auto* found = std::find_if(std::begin(history), std::end(history),
                                     [&](const Row& row) { return row.className == className; });
    return found == std::end(history) ? nullptr : found;
}

std::string formsOf(const Reader::Step& step) {
    return std::string(step.hasXml() ? "X" : "") + (step.hasJson() ? "J" : "");
}

std::vector<std::string> classNames(int number) {
    std::vector<std::string> names;
    for (const Reader::Step& step : Reader::chain()) {
        if (step.number == number)
            names.emplace_back(step.className);
    }
    return names;
}

TEST(Chain, EachStepHasTheNumberAndTheFormsOfTheHistory) {
    for (const Reader::Step& step : Reader::chain()) {
        const Row* row = rowOf(step.className);
        ASSERT_TRUE(row) << step.className << " is no step of the history";
        EXPECT_EQ(step.number, row->number) << step.className;
        EXPECT_EQ(formsOf(step), row->forms) << step.className;
    }
}

TEST(Chain, StandsInTheOrderOfTheHistory) {
    const Row* last = nullptr;
    for (const Reader::Step& step : Reader::chain()) {
        const Row* row = rowOf(step.className);
        ASSERT_TRUE(row) << step.className;
        EXPECT_TRUE(!last || last < row) << step.className << " stands behind " << last->className;
        last = row;
    }
}

// To be enabled when the chain is complete.
TEST(Chain, HasEveryStepOfTheHistory) {
    for (const Row& row : history)
        EXPECT_TRUE(Reader::findStep(row.className)) << row.className;
    EXPECT_EQ(Reader::chain().size(), std::size(history));
}

TEST(Chain, GoesByNumberThenByClassName) {
    const auto steps = Reader::chain();
    ASSERT_FALSE(steps.empty());
    for (std::size_t i = 1; i < steps.size(); ++i) {
        if (steps[i].number == 77)
            EXPECT_LE(steps[i - 1].number, 77);
        else
            EXPECT_LT(std::tie(steps[i - 1].number, steps[i - 1].className),
                      std::tie(steps[i].number, steps[i].className));
    }
}

TEST(Chain, VersionSeventySevenGoesByNeed) {
    // A track that the titles step makes has no `used`, so the step that prunes by it comes first.
    std::vector<std::string> expected;
    for (const char* name : {"V77_TrackUsedAdaptor", "V77_TitlesTrackAdaptor", "V77_TrackLevelAdaptor"}) {
        if (Reader::findStep(name))
            expected.emplace_back(name);
    }
    EXPECT_EQ(classNames(77), expected);
}

TEST(Chain, NamesAreUniqueAndCarryTheirNumber) {
    std::set<std::string_view> names;
    for (const Reader::Step& step : Reader::chain()) {
        EXPECT_TRUE(names.insert(step.className).second) << step.className << " stands twice";
        EXPECT_TRUE(step.className.starts_with("V" + std::to_string(step.number) + "_")) << step.className;
        EXPECT_EQ(step.className.find(':'), std::string_view::npos) << step.className;
    }
}

TEST(Chain, SummariesAreSentencesOfTheirOwn) {
    std::set<std::string_view> summaries;
    for (const Reader::Step& step : Reader::chain()) {
        ASSERT_GT(step.summary.size(), 10U) << step.className;
        EXPECT_TRUE(std::isupper(static_cast<unsigned char>(step.summary.front()))) << step.summary;
        EXPECT_EQ(step.summary.back(), '.') << step.summary;
        EXPECT_EQ(step.summary.find('\n'), std::string_view::npos) << step.summary;
        EXPECT_TRUE(summaries.insert(step.summary).second) << step.className << ": " << step.summary;
    }
}

TEST(Chain, EachStepHasAFormThatIsMade) {
    for (const Reader::Step& step : Reader::chain()) {
        EXPECT_TRUE(step.hasXml() || step.hasJson()) << step.className;
        EXPECT_EQ(step.hasXml(), step.makeXml != nullptr) << step.className;
        EXPECT_EQ(step.hasJson(), step.makeJson != nullptr) << step.className;
        if (step.hasXml()) {
            EXPECT_TRUE(step.makeXml()) << step.className;
        }
        if (step.hasJson()) {
            EXPECT_TRUE(step.makeJson()) << step.className;
        }
        // The conversion stands between the two: what an archive needs is XML up to its last version, all later
        // steps are JSON.
        EXPECT_EQ(step.hasXml(), step.number <= Reader::lastXmlVersion) << step.className;
        if (step.number > Reader::lastXmlVersion) {
            EXPECT_TRUE(step.hasJson()) << step.className;
        }
        EXPECT_LE(step.number, Reader::currentVersion) << step.className;
    }
    EXPECT_EQ(Reader::lastXmlVersion, 62);
    EXPECT_EQ(Reader::currentVersion, 77);
}

TEST(Chain, NumbersWithoutAStepAreFree) {
    for (const int number : {1, 2, 3, 6, 10, 19, 30, 31, 39, 43, 45, 65, 66, 70, 73, 74, 75, 76})
        EXPECT_THAT(classNames(number), IsEmpty()) << number;
}

TEST(Chain, FindsAStepWithAndWithoutItsNamespace) {
    for (const Reader::Step& step : Reader::chain()) {
        EXPECT_EQ(Reader::findStep(step.className), &step);
        EXPECT_EQ(Reader::findStep("Project::" + std::string(step.className)), &step);
    }
}

TEST(Chain, FindsNothingByAnotherName) {
    for (const char* name :
         {"", "Project::", "V28", "28", "ClipLabelAdaptor", "V28_ClipLabelAdaptor ", " V28_ClipLabelAdaptor",
          "v28_ClipLabelAdaptor", "V28_ClipLabelAdapto", "Project::Project::V28_ClipLabelAdaptor",
          "::Project::V28_ClipLabelAdaptor", "::V28_ClipLabelAdaptor", "project::V28_ClipLabelAdaptor",
          "PortableLoadAdaptor", "Project::PortableSaveAdaptor", "ImportDescriptionAdaptor"})
        EXPECT_EQ(Reader::findStep(name), nullptr) << '"' << name << '"';
    EXPECT_EQ(Reader::findStep(std::string_view()), nullptr);
    EXPECT_EQ(Reader::findStep(std::string_view("V28_ClipLabelAdaptor\0", 21)), nullptr);
}

} // namespace
