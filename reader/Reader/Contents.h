#pragma once

#include "Reader/Document.h"

#include <set>
#include <string>
#include <vector>

// Threads: each function reads only its argument; see Document.

namespace Reader {

/// Counts the objects of each class, including embedded objects and base class parts. Predeclarations are not
/// counted.
ObjectCounts countObjects(const Document& document);

/// Whether an element of that type in an archive only declares other objects.
bool isDeclaring(const QString& type);

/// A clip in the list of a timeline.
struct Clip {
    unsigned long long id;
    std::string name; ///< empty if it has none
};

/// All clips in the lists of the document's timelines, each once, in document order.
std::vector<Clip> listClips(const Document& document);

/// The ids of all objects that can be reached by references from the root object, and its own.
std::set<unsigned long long> findReachable(const Document& document);

} // namespace Reader
