#pragma once

#include <stdexcept>
#include <string>

namespace Reader {

/// What went wrong, as the program's exit code tells it.
enum class Problem {
    WrongUse = 2,       ///< no such step, no form of it for the document, or options that exclude each other
    Unreadable = 3,     ///< the input can't be opened or read
    Empty = 4,          ///< the input has no content
    UnknownForm = 5,    ///< neither XML nor JSON
    BrokenXml = 6,      ///< not well-formed, or a character that XML forbids
    BrokenJson = 7,     ///< not well-formed
    NoArchive = 8,      ///< XML without exactly one `Archive`, or whose root object is missing
    RefusedXml = 9,     ///< a document type declaration, a foreign encoding, too deep or too many attributes
    WrongEnvelope = 10, ///< JSON that is no project document
    NoVersion = 11,     ///< no schema version in the document, none given
    WrongVersion = 12,  ///< newer than this program, or beyond the version asked for
    StepFailed = 13,    ///< a step threw
    StrictFailure = 14, ///< a step reported an error or clips were lost, and that was not to pass
    Unwritable = 15,    ///< the output can't be written
    OutputExists = 16,  ///< the output is there already and was not to be replaced
};

/// A document can't be read, migrated or written. The text names file, place and reason.
class Error : public std::runtime_error {
public:
    Error(Problem problem, const std::string& text) : std::runtime_error(text), m_problem(problem) {}

    Problem problem() const { return m_problem; }

private:
    Problem m_problem;
};

} // namespace Reader
