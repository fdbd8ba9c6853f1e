#pragma once

#include "Reader/Document.h"

#include <set>
#include <string>
#include <string_view>
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

/// What a project is made of, as its users see it.
enum class PartKind {
    Clip,   ///< an entry of a timeline
    Effect, ///< an entry of the effects of a clip
    Title,  ///< the overlay of a clip
};

/// The kind as a word for programs, such as "clip".
std::string_view nameOf(PartKind kind);

struct Part {
    PartKind kind;
    unsigned long long id;
    std::string className;   ///< empty where there is no such object
    std::string name;        ///< empty for none
    unsigned long long clip; ///< id of the clip that it belongs to; of a clip its own
};

/// All clips that the document's timelines list, each once, in document order, each followed by its effects and its
/// title. What several clips share is listed with the first.
std::vector<Part> listParts(const Document& document);
/// The same for an archive that is being edited.
std::vector<Part> listParts(Archive::Internal::ArchiveEditor& archive);

/// The ids of all objects that references lead to from the root object, itself included. A reference to an object that
/// is not there leads nowhere.
std::set<unsigned long long> findReachable(const Document& document);

} // namespace Reader
