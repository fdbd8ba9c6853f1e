#pragma once

#include "Recovery/DamagedText.h"
#include "Recovery/Salvage.h"
#include "Recovery/VersionGuess.h"
#include "Serialize/Json/FlatObject.h"

#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace Reader {

/// What is whole in a damaged JSON document: a flat document, and what has no place in it yet.
struct ScannedJson {
    std::map<ObjectId, nlohmann::json> objects;         ///< each object in them is replaced by a link
    std::unordered_set<ObjectId> closed;                ///< objects that are not whole
    nlohmann::json envelope = nlohmann::json::object(); ///< its members; those lost are missing
    /// Entries of lists whose timeline is not known: the entry of a clip, a transition or a link.
    std::vector<nlohmann::json> looseEntries;
    std::vector<nlohmann::json> looseItems;             ///< entries of the user's collection
    std::map<std::string, nlohmann::json> looseMembers; ///< by the class of the object that they belong to
    std::vector<RecoveredClip> damagedClips;
    VersionFacts facts;
    std::size_t wholeClips = 0;
    std::size_t wholeObjects = 0;
    std::size_t droppedObjects = 0;
    bool isDamaged = false;
    bool hasObjects = false; ///< whether there is anything of a project
};

/// Reads what is whole in damaged JSON text. Of several documents behind one another that with the most clips is taken,
/// and of equal ones the last. Neither time nor memory are more than linear in the size of the text, but for a
/// logarithm, and depth takes no stack.
ScannedJson scanJson(DamagedText& text, RecoveryReport& report);

} // namespace Reader
