#pragma once

#include "Repairs/Repair.h"

#include <memory>

// How each repair is created. The file of a repair has its name.

namespace Repairs {

std::unique_ptr<TextRepair> makeForbiddenCharacters();
std::unique_ptr<TextRepair> makeNumbersInText();

std::unique_ptr<ArchiveRepair> makeArraySizes();
std::unique_ptr<ArchiveRepair> makeSharedIds();
std::unique_ptr<ArchiveRepair> makeMissingTimeline();
std::unique_ptr<ArchiveRepair> makeRootReference();
std::unique_ptr<ArchiveRepair> makeDanglingReferences();
std::unique_ptr<JsonRepair> makeDanglingLinks();
std::unique_ptr<ArchiveRepair> makePredeclarations();
std::unique_ptr<ArchiveRepair> makeWideIds();
std::unique_ptr<ArchiveRepair> makeSecondTimelines();
std::unique_ptr<ArchiveRepair> makeSharedQuizzes();
std::unique_ptr<ArchiveRepair> makeQuizIds();
std::unique_ptr<ArchiveRepair> makeSharedMasks();
std::unique_ptr<ArchiveRepair> makeRoundedNumbers();
std::unique_ptr<ArchiveRepair> makeProjectContent();
std::unique_ptr<ArchiveRepair> makeDoubledFields();
std::unique_ptr<ArchiveRepair> makeInfiniteNumbers();
std::unique_ptr<JsonRepair> makeUnnamedEntries();
std::unique_ptr<JsonRepair> makeOldCollections();
std::unique_ptr<JsonRepair> makeLutWithoutCube();
std::unique_ptr<JsonRepair> makeQuizLinks();
std::unique_ptr<JsonRepair> makeQuizTracks();
std::unique_ptr<JsonRepair> makeMissingFields();
std::unique_ptr<JsonRepair> makeClipsWithoutTrack();

} // namespace Repairs
