#pragma once

#include "Reader/Document.h"

#include <string>
#include <string_view>
#include <vector>

namespace Reader {

/// What can be wrong with a document that can be read all the same.
enum class Fault {
    DanglingReference,   ///< a reference to an object that is not there
    DuplicateId,         ///< an object whose id another one has already
    WrongSize,           ///< an array whose `size` is not the number of its items; archives only
    WrongIndex,          ///< an array item whose `index` is not its place from 1; archives only
    NotPredeclared,      ///< an object without a predeclaration; archives only
    StalePredeclaration, ///< a predeclaration that names an object that is not there; archives only
    Unreachable,         ///< an object that no references lead to from the root object
};

/// A fault and its place.
struct Finding {
    Fault fault;
    std::string className;     ///< of the object that has the fault, embedded objects included
    unsigned long long id = 0; ///< its id
    std::string path;          ///< from that object to the place, "clips/Item[2]/Key"; empty for itself
    std::string text;          ///< what is wrong there, for people
    unsigned long long to = 0; ///< the object that is missing, for a reference
};

/// The name of a fault in JSON output, "dangling-reference".
std::string_view nameOf(Fault fault);

/// Looks for every fault, each kind together and in the document's order. The cost is that of a few walks.
/// In JSON duplicate ids are those of the text as it was read.
///
/// Threads: reads the document that it is given, and no other; see Document.
std::vector<Finding> verify(const Document& document);

} // namespace Reader
