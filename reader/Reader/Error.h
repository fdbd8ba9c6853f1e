#pragma once

#include <QString>

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Reader {

/// The kinds of errors in reading, migrating and writing.
enum class ErrorKind {
    Unreadable,         ///< the input can't be opened or read
    TooLarge,           ///< the input is larger than the limit
    NoRegularFile,      ///< a file to be changed in place is a device, a pipe or a folder
    Empty,              ///< the input has no content
    UnknownForm,        ///< neither XML nor JSON; the reason, if any, is what it is and what to do
    BrokenXml,          ///< not well-formed, or a character that XML forbids
    RefusedXml,         ///< a document type declaration, too deep, or too many attributes
    ForeignEncoding,    ///< XML in an encoding that no project uses; the reason is its name
    NoArchive,          ///< XML without exactly one `Archive`
    MissingRoot,        ///< an archive whose root object is missing
    BrokenJson,         ///< not well-formed
    WrongEnvelope,      ///< JSON that is no project document
    NoVersion,          ///< the document names no schema version
    BadVersion,         ///< what it names is no version number
    WrongForm,          ///< a schema version whose documents have the other form
    TooNew,             ///< a schema version above the newest that is known
    UnreachableVersion, ///< the version asked for is below the document's, or above the newest
    NoWayBack,          ///< the version asked for is an archive's and the document is JSON
    UnknownStep,        ///< there is no adaptor of that name
    NoSuchForm,         ///< the adaptor can't run on a document of this form
    StepFailed,         ///< an adaptor threw an exception
    Unwritable,         ///< a file or folder can't be written
    OutputExists,       ///< a file exists and must not be replaced
    InUse,              ///< the file is locked by another migration
    ChangedMeanwhile,   ///< another process changed or removed the file during the migration
};

/// The name of a kind in JSON output, such as "broken-xml".
std::string_view nameOf(ErrorKind kind);

/// Why a file can't be written.
enum class WriteObstacle {
    None,         ///< unknown
    NoFolder,     ///< its folder is missing
    IsFolder,     ///< a folder has its name
    NotPermitted, ///< this user may not write it
    NotRegular,   ///< what has its name is a link, a pipe, a device or a socket
    NoSpace,      ///< the disk is full, or the user's share of it
};

/// The details of an error. Unknown ones are empty.
struct ErrorFacts {
    QString file = {};                 ///< name of the document, or path of the file
    std::optional<qint64> line = {};   ///< in XML text, from 1
    std::optional<qint64> column = {}; ///< in XML text, from 1
    std::optional<qint64> byte = {}; ///< in JSON text, from 1; of a text that was cut off, how many there are
    std::string step = {};           ///< class name of an adaptor
    std::optional<int> version = {}; ///< schema version of the document
    std::optional<int> target = {};  ///< schema version that was asked for
    std::string reason = {};         ///< details, as a part of a sentence
    WriteObstacle obstacle = WriteObstacle::None;
    bool isCutOff =
        false; ///< the document is well-formed, but for its end, which is missing; line, column, byte are known
};

/// Thrown if a document can't be read, migrated or written. what() is a sentence for logs. Programs create
/// their messages for users from kind() and facts().
///
/// Threads: a plain value.
class Error : public std::runtime_error {
public:
    Error(ErrorKind kind, ErrorFacts facts);

    ErrorKind kind() const { return m_kind; }
    const ErrorFacts& facts() const { return m_facts; }

private:
    ErrorKind m_kind;
    ErrorFacts m_facts;
};

} // namespace Reader
