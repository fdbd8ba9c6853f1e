#pragma once

#include "Reader/Document.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

// Threads: each function reads only its argument; see Document.

namespace Archive::Internal {
class ArchiveEditor;
class FlatEditor;
} // namespace Archive::Internal

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
    std::string className;              ///< empty where there is no such object
    std::string name;                   ///< empty for none
    unsigned long long clip;            ///< id of the clip that it belongs to; of a clip its own
    std::optional<long long> time = {}; ///< of a clip: where it begins in its timeline, in milliseconds
};

/// All clips that the document's timelines list, each once, in document order, each followed by its effects and its
/// title. What several clips share is listed with the first.
std::vector<Part> listParts(const Document& document);
/// The same for a document that is being edited.
std::vector<Part> listParts(Archive::Internal::ArchiveEditor& archive);
std::vector<Part> listParts(const JsonDocument& document, Archive::Internal::FlatEditor& editor);

/// The ids of all objects that references lead to from the root object, itself included. A reference to an object that
/// is not there leads nowhere.
std::unordered_set<unsigned long long> findReachable(const Document& document);

} // namespace Reader
