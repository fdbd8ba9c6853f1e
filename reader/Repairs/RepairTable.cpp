#include "Repairs/RepairTable.h"

#include "Repairs/Makers.h"

#include <algorithm>
#include <iterator>

namespace Repairs {
namespace {

using Places = RepairRow::Places;

constexpr RepairRow text(std::string_view name, std::string_view summary, RepairRow::MakeText make) {
    return {name, Places{parsing}, summary, make, nullptr, nullptr};
}

constexpr RepairRow archive(std::string_view name, Places places, std::string_view summary,
                            RepairRow::MakeXml make) {
    return {name, places, summary, nullptr, make, nullptr};
}

constexpr RepairRow json(std::string_view name, Places places, std::string_view summary,
                         RepairRow::MakeJson make) {
    return {name, places, summary, nullptr, nullptr, make};
}

// In the order of a migration.
// clang-format off
constexpr RepairRow table[] = {
    text("forbidden-characters", "Characters that XML forbids become U+FFFD; control characters in JSON texts become escapes.", makeForbiddenCharacters),
    text("numbers-in-text", "Numbers in a JSON text that are not finite become 0, and those that are too large the greatest number.", makeNumbersInText),
    archive("array-sizes", {loading}, "Lists whose size is not the number of their items get the right size.", makeArraySizes),
    archive("shared-ids", {loading}, "Objects that have the id of another get one of their own, and references lead to the object of the class that they need.", makeSharedIds),
    archive("wide-ids", {loading}, "In documents before version 24, objects whose id needs more than 32 bits get a smaller one.", makeWideIds),
    archive("missing-timeline", {loading}, "A project without a timeline gets one that holds its clips one after the other.", makeMissingTimeline),
    archive("root-reference", {loading}, "A root reference that leads to nothing leads to the project's root object again.", makeRootReference),
    {"dangling-references", {loading}, "References to objects that are missing are cleared, and lists lose such entries.", nullptr, makeDanglingReferences, makeDanglingLinks},
    json("unnamed-entries", {loading}, "Entries of timelines whose parts are called first and second get the names of clips, timings, links and transitions.", makeUnnamedEntries),
    archive("predeclarations", {loading, "V41_CutawayToPictureInPictureAdaptor", conversion}, "Each object gets exactly one predeclaration, of its own class.", makePredeclarations),
    archive("second-timelines", {"V4_TrackValueAdaptor", "V22_TransitionsAdaptor", "V27_MultitrackAdaptor"}, "Timelines after the first get the track numbers and transitions that versions 4 and 22 gave to the first only.", makeSecondTimelines),
    archive("shared-quizzes", {"V40_RemoveQuizFromOverlayAdaptor"}, "Quiz clips that share a preset get one each; version 40 leaves nothing for the second.", makeSharedQuizzes),
    archive("quiz-ids", {"V41_CutawayToPictureInPictureAdaptor"}, "Answers of quizzes whose ids the project uses as well get ids of their own.", makeQuizIds),
    archive("shared-masks", {"V51_MaskEffectAdaptor"}, "Clips that share a mask get one each; version 51 leaves an empty mask for the second.", makeSharedMasks),
    archive("rounded-numbers", {"V51_MaskEffectAdaptor"}, "Numbers of masks keep all digits; version 51 reads their text, which has six.", makeRoundedNumbers),
    archive("project-content", {"V57_ProjectPersistentObjectAdaptor"}, "A project whose root is no project content gets one; version 57 loses everything without it.", makeProjectContent),
    archive("doubled-fields", {conversion}, "The second uniqueId of an effect (version 18) and the second pixelSize of a mask frame (version 51) no longer replace the first.", makeDoubledFields),
    archive("infinite-numbers", {conversion}, "Numbers that are not finite become the number of their text, or 0; JSON can't hold them.", makeInfiniteNumbers),
    json("old-collections", {"V62_CollectionItemPayloadAdaptor", "PortableLoadAdaptor"}, "JSON of versions 59 to 61 gets the classes and paths of version 62, which has no form for JSON.", makeOldCollections),
    json("lut-without-cube", {"V63_LutEffectAuxResourceAdaptor"}, "A LUT without a cube gets the one that it is named after, or an empty one; version 63 fails without it.", makeLutWithoutCube),
    json("quiz-tracks", {"V69_RemoveQuizzesAdaptor"}, "Clips on the track of the quizzes move to another one before version 69 removes it.", makeQuizTracks),
    json("quiz-links", {"V69_RemoveQuizzesAdaptor"}, "Links and transitions to quiz clips end; version 69 removes the clips and keeps these.", makeQuizLinks),
    json("missing-fields", {"V77_TrackUsedAdaptor", "PortableLoadAdaptor"}, "Fields of clips, tracks and files that steps need get their usual value where they are missing.", makeMissingFields),
    json("clips-without-track", {"V77_TrackUsedAdaptor"}, "Clips that lie on no track of their timeline get one for their type; version 77 fails on titles without a track.", makeClipsWithoutTrack),
};
// clang-format on

} // namespace

std::vector<std::string_view> RepairRow::places() const {
    std::vector<std::string_view> places;
    std::copy_if(m_places.begin(), m_places.end(), std::back_inserter(places),
                 [](std::string_view place) { return !place.empty(); });
    return places;
}

bool RepairRow::looksBefore(std::string_view place) const {
    return !place.empty() && std::find(m_places.begin(), m_places.end(), place) != m_places.end();
}

std::span<const RepairRow> repairTable() {
    return table;
}

const RepairRow* findRepair(std::string_view name) {
    const auto* found = std::find_if(std::begin(table), std::end(table),
                                     [&](const RepairRow& row) { return row.name == name; });
    return found == std::end(table) ? nullptr : found;
}

RepairedText repairText(const QByteArray& bytes) {
    RepairedText result{bytes, {}};
    for (const RepairRow& row : table) {
        if (!row.hasText())
            continue;
        Changes changes;
        result.bytes = row.makeText()->repair(result.bytes, changes);
        if (changes.count() == 0)
            continue;
        result.repairs.push_back(changes.take());
        result.repairs.back().name = row.name;
        result.repairs.back().before = parsing;
    }
    return result;
}

} // namespace Repairs
