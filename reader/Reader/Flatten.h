#pragma once

#include "Reader/WideNumbers.h"
#include "Serialize/Json/FlatObject.h"

#include <cstddef>
#include <vector>

// Threads: every function here may be called from any thread at any time, on values of its own.

namespace Reader {

/// A document as steps work on it.
struct FlatDocument {
    Serialize::Json::FlatObject flat;
    unsigned long long root = 0; ///< id of the project's root object
};

/// What flatten() found, and what it changed for the steps.
struct FlattenNotes {
    std::vector<unsigned long long> duplicateIds; ///< ids that a later object had too, ascending, each once
    std::size_t missingIds = 0;                   ///< objects without an id of their own
    /// Where links to a duplicate id go now: the first object of that id that is no base class part.
    std::map<unsigned long long, unsigned long long> redirected;
    WideNumbers wideNumbers; ///< whole numbers that steps see as floating numbers
};

/// Whether a value is a class object: an object whose "@meta" is an object.
bool isClassObject(const nlohmann::json& value);

/// The target of a link: an object with the one key "@meta_reference" and an id above 0. 0 for all else.
unsigned long long linkTarget(const nlohmann::json& value);

/// Takes a nested document apart: each class object goes into the flat document under its id and leaves a link.
/// An object whose id is missing, 0 or taken gets a fresh one above all ids of the document, in walking order.
/// `root` must be a class object. Depth costs memory, not stack. Throws std::length_error where no id is left.
FlatDocument flatten(nlohmann::json root, FlattenNotes& notes);

/// The reverse: each object is written in full at its first reference, in walking order from the root, and as a link
/// at later ones. `leftOut` becomes the number of objects that nothing reaches. Uses `document` up.
nlohmann::json nest(FlatDocument document, std::size_t& leftOut);

} // namespace Reader
