#pragma once

#include "Reader/Document.h"

#include <set>
#include <string>
#include <vector>

// Threads: each function reads the document that it is given, and no other; see Document.

namespace Archive::Internal {
class ArchiveEditor;
}

namespace Reader {

/// Objects by class name, embedded objects and base class parts included; those that declare others are not.
ObjectCounts countObjects(const Document& document);

/// Whether an element of an archive declares other objects rather than being a part of the project.
bool isDeclaring(const QString& type);

/// A clip that a timeline lists.
struct Clip {
    unsigned long long id;
    std::string name; ///< empty for none
};

/// All clips that the document's timelines list, each once, in document order.
std::vector<Clip> listClips(const Document& document);
/// The same for an archive that is being edited.
std::vector<Clip> listClips(Archive::Internal::ArchiveEditor& archive);

/// The ids of all objects that references lead to from the root object, itself included.
std::set<unsigned long long> findReachable(const Document& document);

} // namespace Reader
