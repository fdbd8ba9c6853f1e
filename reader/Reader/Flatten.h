#pragma once

#include "Reader/WideNumbers.h"
#include "Serialize/Json/FlatObject.h"

#include <cstddef>
#include <unordered_set>
#include <vector>

// Threads: all functions are thread-safe for different arguments.

namespace Reader {

/// The flat document that the steps work on.
struct FlatDocument {
    Serialize::Json::FlatObject flat;
    unsigned long long root = 0; ///< id of the project's root object
};

/// What flatten() found, and what it changed for the steps.
struct FlattenNotes {
    std::vector<unsigned long long> duplicateIds; ///< ids that a second object had, ascending, each once
    std::size_t missingIds = 0;                   ///< number of objects without an id
    /// For duplicate ids: the new target of their links, which is the first object of the id that is no base
    /// class part.
    std::map<unsigned long long, unsigned long long> redirected;
    WideNumbers wideNumbers; ///< whole numbers that steps see as floating numbers
};

/// Whether a value is a class object: an object whose "@meta" is an object.
bool isClassObject(const nlohmann::json& value);

/// The target of a link, which is an object with the single key "@meta_reference" and an id above 0. 0 for
/// any other value.
unsigned long long linkTarget(const nlohmann::json& value);

/// Converts a nested document to a flat one: each class object is stored under its id and replaced by a link.
/// An object whose id is missing, 0 or used before gets a new one, above all ids of the document. New ids are
/// assigned depth-first. `root` must be a class object. Depth costs memory, not stack. Throws
/// std::length_error if no id is left.
FlatDocument flatten(nlohmann::json root, FlattenNotes& notes);

/// The reverse: each object is written in full at its first reference, depth-first from the root, and as a
/// link at later ones. `leftOut` is set to the number of objects that can't be reached.
nlohmann::json nest(FlatDocument document, std::size_t& leftOut);

/// The same in parts, for one who walks through the result anyway.
///
/// Threads: belongs to one thread.
class Nester {
public:
    explicit Nester(FlatDocument document) : m_document(std::move(document)) {}

    /// The link to the root object, where the walk starts.
    nlohmann::json start() const;

    /// To be called for each value, depth-first and before what is in it, but not for "@meta". Replaces the first link to
    /// an object by the object.
    void visit(nlohmann::json& value);

    /// Number of objects that were not visited.
    std::size_t leftOut() const { return m_document.flat.objects.size() - m_written.size(); }

private:
    void writeInFull(nlohmann::json& place, nlohmann::json& entry, unsigned long long id);

    FlatDocument m_document;
    std::unordered_set<unsigned long long> m_written;
};

} // namespace Reader
