// Runs verify() between the steps: steps cause no new faults, except those that some steps cause on purpose.
// These are listed here with the reason.

#include "Reader/Migration.h"
#include "Reader/Verify.h"
#include "support/Documents.h"
#include "support/Files.h"
#include "support/Paths.h"

#include <gtest/gtest.h>

#include <QRegularExpression>

#include <map>
#include <set>
#include <tuple>

using Reader::Document;
using Reader::Fault;
using Reader::Finding;

namespace {

/// A fault that a step causes on purpose, at all places of the same path.
struct MeantFault {
    const char* step;
    Fault fault;
    const char* className;
    const char* path; ///< with "#" for every number

    auto key() const {
        return std::tuple<std::string, Fault, std::string, std::string>(step, fault, className, path);
    }
};

constexpr const char* refs = "refs/Item[#]/Data";

const MeantFault meantFaults[] = {
    // These remove objects and their predeclarations. The records of objects that referred to them keep the
    // ids in their `refs`, which nothing reads.
    {"V16_PanZoomAdaptor", Fault::StalePredeclaration, "Predeclare", refs},
    {"V24_CompositionRemoveAdaptor", Fault::StalePredeclaration, "Predeclare", refs},
    {"V32_ColorFiltersAdaptor", Fault::StalePredeclaration, "Predeclare", refs},
    {"V34_NoPreviewAdaptor", Fault::StalePredeclaration, "Predeclare", refs},
    {"V40_RemoveQuizFromOverlayAdaptor", Fault::StalePredeclaration, "Predeclare", refs},
    {"V51_MaskEffectAdaptor", Fault::StalePredeclaration, "Predeclare", refs},
    // There is a single pass over the records: an envelope's matrix is declared before the value that
    // contains it, so its record stays when the overlay is removed.
    {"V40_RemoveQuizFromOverlayAdaptor", Fault::StalePredeclaration, "Predeclare", "oid"},
    {"V40_RemoveQuizFromOverlayAdaptor", Fault::StalePredeclaration, "Predeclare", "poid"},
    // The entries of a clip's second zoom, and of an enhancement without a flag, stay after their effects
    // were removed.
    {"V16_PanZoomAdaptor", Fault::DanglingReference, "Timeline::Clip", "effects/Item[#]/Data"},
    {"V32_ColorFiltersAdaptor", Fault::DanglingReference, "Timeline::Clip", "effects/Item[#]/Data"},
    // Effects that no clip lists are converted like all others and remain unlisted.
    {"V4_EffectNamespaceAdaptor", Fault::Unreachable, "Effect::AutoEnhance", ""},
    {"V18_NoiseRemovalAdaptor", Fault::Unreachable, "Effect::AudioNoiseSuppress", ""},
    {"V20_HighlightConcealAdaptor", Fault::Unreachable, "Effect::MaskConceal", ""},
    {"V20_HighlightConcealAdaptor", Fault::Unreachable, "Effect::MaskHighlight", ""},
    {"V32_ColorFiltersAdaptor", Fault::Unreachable, "Effect::AutoSaturation", ""},
    {"V32_ColorFiltersAdaptor", Fault::Unreachable, "Effect::MagicEnhance", ""},
    // The two items of a title exchange their indices, but not their positions.
    {"V17_TitleAdaptorSunLabel", Fault::WrongIndex, "Overlay::Preset", "items/Item[#]"},
    // The effect is replaced by one without fields, but the objects that its fields referred to stay.
    {"V18_NoiseRemovalAdaptor", Fault::Unreachable, "Effect::NoiseProfile", ""},
    // The record of an overlay item gets `size` 1 and an item with index 1, without regard to its old
    // entries; the shadow continues from there.
    {"V25_OverlayAnimationAdaptor", Fault::WrongSize, "Predeclare", "refs"},
    {"V25_OverlayAnimationAdaptor", Fault::WrongIndex, "Predeclare", "refs/Item[#]"},
    {"V38_OverlayDropShadowAdaptor", Fault::WrongIndex, "Predeclare", "refs/Item[#]"},
    // Tracks are listed from the topmost, number 6, down.
    {"V27_MultitrackAdaptor", Fault::WrongIndex, "Timeline::Object", "tracks/Item[#]"},
    // Every clip loses its transition, and only those of the primary track are listed afterwards.
    {"V46_TransitionToClipPairAdaptor", Fault::Unreachable, "Transition::Crossfade", ""},
    // Quiz clips and removed tracks are removed from their lists, but stay as objects with all their parts;
    // they are not saved.
    {"V69_RemoveQuizzesAdaptor", Fault::Unreachable, "Timeline::Clip", ""},
    {"V69_RemoveQuizzesAdaptor", Fault::Unreachable, "Timeline::ClipTiming", ""},
    {"V69_RemoveQuizzesAdaptor", Fault::Unreachable, "Timeline::CollectionItemInfo", ""},
    {"V69_RemoveQuizzesAdaptor", Fault::Unreachable, "Quiz::Preset", ""},
    {"V69_RemoveQuizzesAdaptor", Fault::Unreachable, "Quiz::Question", ""},
    {"V77_TrackUsedAdaptor", Fault::Unreachable, "Timeline::Track", ""},
};

/// Findings by fault, class and path with "#" for numbers.
using Counts = std::map<std::tuple<Fault, std::string, std::string>, int>;

Counts countsOf(const Document& document) {
    static const QRegularExpression numbers(QStringLiteral("\\[\\d+\\]"));
    Counts counts;
    for (const Finding& finding : Reader::verify(document))
        ++counts[{
            finding.fault, finding.className,
            QString::fromStdString(finding.path).replace(numbers, QStringLiteral("[#]")).toStdString()}];
    return counts;
}

using Left = std::set<decltype(meantFaults[0].key())>;

/// The new faults after each adaptor.
Left leftBehind(const QByteArray& bytes, int to = Reader::currentVersion) {
    Left left;
    Counts before;
    Reader::MigrationOptions options;
    options.name = options.location = options.target = QStringLiteral("film");
    options.to = to;
    options.watch = [&](const Reader::MigrationPart& part, const Document& document) {
        Counts now = countsOf(document);
        for (const auto& [key, count] : now) {
            if (part.kind == Reader::MigrationPart::Kind::Adaptor && count > before[key])
                left.insert(std::tuple_cat(std::make_tuple(part.name), key));
        }
        before = std::move(now);
    };
    Reader::Migration(Reader::parse(bytes, options.name), options).run();
    return left;
}

std::string lineOf(const Left::value_type& entry) {
    const auto& [step, fault, className, path] = entry;
    return step + ": " + std::string(Reader::nameOf(fault)) + ' ' + className + ' ' + path;
}

TEST(MigrationFindings, StepsCauseOnlyTheExpectedFaults) {
    Left allowed;
    for (const MeantFault& entry : meantFaults)
        allowed.insert(entry.key());
    Left found;
    for (const auto& entry : std::filesystem::directory_iterator(Tests::samplesFolder())) {
        const std::string extension = entry.path().extension().string();
        if (extension != ".xml" && extension != ".json")
            continue;
        for (const auto& left : leftBehind(QByteArray::fromStdString(Tests::readFile(entry.path())))) {
            EXPECT_TRUE(allowed.count(left)) << entry.path().filename() << ": " << lineOf(left);
            found.insert(left);
        }
    }
    for (const auto& entry : allowed)
        EXPECT_TRUE(found.count(entry)) << "no sample shows " << lineOf(entry);
}

/// An archive of a version with a timeline of one clip, which has those effects and overlay.
QByteArray film(int version, const std::string& clip, const std::string& objects,
                std::vector<std::pair<std::string, long long>> declared) {
    declared.insert(declared.end(),
                    {{"Timeline::Object", 2}, {"Timeline::Clip", 3}, {"Timeline::ClipTiming", 4}});
    return QByteArray::fromStdString("<Archive schemaVersion='" + std::to_string(version) +
                                     "'><RootRef type='ObjectRef' value='2'/>" +
                                     Tests::predeclarator(declared) +
                                     "<RootObject type='Timeline::Object' objectId='2'><clips type='Array' "
                                     "size='1'><Item type='Item' index='1'>"
                                     "<Key type='ObjectRef' value='3'/><Value type='Timeline::ClipTiming' "
                                     "objectId='4'/></Item></clips></RootObject>"
                                     "<RootObject type='Timeline::Clip' objectId='3'>" +
                                     clip + "</RootObject>" + objects + "</Archive>");
}

// The first zoom of a clip becomes its envelope. The item of the second one stays as a dangling reference.
TEST(MigrationFindings, ASecondZoomLeavesAReference) {
    const std::string zoom = "<RootObject type='Effect::Zoom' objectId='";
    const Left left =
        leftBehind(film(15,
                        "<effects type='Array' size='2'><Item type='Item' index='1'><Data "
                        "type='ObjectRef' value='5'/></Item><Item type='Item' index='2'><Data "
                        "type='ObjectRef' value='6'/></Item></effects>",
                        zoom + "5'/>" + zoom + "6'/>", {{"Effect::Zoom", 5}, {"Effect::Zoom", 6}}),
                   16);
    EXPECT_TRUE(left.count(
        {"V16_PanZoomAdaptor", Fault::DanglingReference, "Timeline::Clip", "effects/Item[#]/Data"}));
}

// A quiz overlay that no clip uses loses its predeclaration, but stays.
TEST(MigrationFindings, AnUnusedQuizStaysUndeclared) {
    const Left left = leftBehind(film(39, "",
                                      "<RootObject type='Overlay::Preset' objectId='5'><type type='int32_t' "
                                      "value='4'/></RootObject>",
                                      {{"Overlay::Preset", 5}}),
                                 40);
    EXPECT_TRUE(
        left.count({"V40_RemoveQuizFromOverlayAdaptor", Fault::NotPredeclared, "Overlay::Preset", ""}));
}

} // namespace
