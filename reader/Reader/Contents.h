#pragma once

#include "Reader/Document.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace Reader {

using ObjectCounts = std::map<std::string, std::size_t>;

/// Objects by class name, embedded objects and base class parts included; those that declare others are not.
ObjectCounts countObjects(const Document& document);

/// A reference to an object that is not there.
struct DanglingReference {
    unsigned long long from; ///< id of the object that refers
    std::string fromClass;
    unsigned long long to;

    auto operator<=>(const DanglingReference&) const = default;
};

std::vector<DanglingReference> findDanglingReferences(const Document& document);

/// Ids that more than one object has, ascending. In JSON those of the text as it was read.
std::vector<unsigned long long> findDuplicateIds(const Document& document);

/// A clip that a timeline lists.
struct Clip {
    unsigned long long id;
    std::string name; ///< empty for none
};

/// All clips that the document's timelines list, each once, in the order in which they are met.
std::vector<Clip> listClips(const Document& document);

/// The ids of all objects that references lead to from the root object, itself included.
std::set<unsigned long long> findReachable(const Document& document);

} // namespace Reader
