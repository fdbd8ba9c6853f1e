#pragma once

#include "Reader/Document.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Reader {

/// The kinds of faults in a document that can be read.
enum class Fault {
    DanglingReference,   ///< a reference to an object that is missing
    DuplicateId,         ///< an object with the same id as an earlier one
    WrongSize,           ///< an array whose `size` differs from the number of its items; archives only
    WrongIndex,          ///< an array item whose `index` is not its position from 1; archives only
    NotPredeclared,      ///< an object without a predeclaration; archives only
    StalePredeclaration, ///< a predeclaration of an object that is missing; archives only
    Unreachable,         ///< an object that can't be reached by references from the root object
};

/// How bad a fault is.
enum class Severity {
    Note,    ///< nothing is lost: usual in old documents, or in an object that the project does not use
    Warning, ///< a migration or another program may have problems with it
    Error,   ///< something is lost already, or will be
};

/// The severity as a word, "error".
std::string_view nameOf(Severity severity);

/// The severity of that name; none for another text.
std::optional<Severity> severityNamed(std::string_view name);

/// A fault and where it is.
struct Finding {
    Fault fault;
    Severity severity;
    std::string className;     ///< of the object with the fault, which may be an embedded one
    unsigned long long id = 0; ///< its id
    std::string
        path; ///< from that object to the fault, "clips/Item[2]/Key"; empty if it is the object itself
    std::string text;          ///< what is wrong, for users
    unsigned long long to = 0; ///< id of the missing object, for a reference
};

/// The name of a fault in JSON output, "dangling-reference".
std::string_view nameOf(Fault fault);

/// Finds all faults, grouped by kind, each kind in document order. The time is linear in the size of the
/// document. In JSON, duplicate ids are those in the text that was read.
///
/// Threads: reads only its argument; see Document.
std::vector<Finding> verify(const Document& document);

} // namespace Reader
