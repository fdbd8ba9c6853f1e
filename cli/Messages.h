#pragma once

#include "Reader/Error.h"

#include <QString>

#include <exception>
#include <optional>
#include <string>

/// The messages of the program for failures: texts for users, remedies and exit codes.
namespace Messages {

enum ExitCode {
    Done = 0,
    Unexpected = 1,
    WrongUse = 2,
    Unreadable = 3,
    Empty = 4,
    UnknownForm = 5,
    BrokenXml = 6,
    BrokenJson = 7,
    NoArchive = 8,
    RefusedXml = 9,
    WrongEnvelope = 10,
    NoVersion = 11,
    WrongVersion = 12,
    StepFailed = 13,
    StrictFailure = 14,
    Unwritable = 15,
    OutputExists = 16,
    HasFindings = 17,
    OutOfMemory = 18,
};

struct Message {
    ExitCode code;
    std::string kind; ///< a name for programs, such as "broken-xml"
    std::string text; ///< position, reason and remedy, without a full stop
    std::optional<qint64> line = {};
    std::optional<qint64> column = {};
    std::optional<qint64> byte = {};
    std::string step = {}; ///< class name of the adaptor that failed; empty if none did
};

Message messageFor(const Reader::Error& error);

// Failures of the program itself, not of the reader.

Message inPlaceNeedsFile();
Message notOneProject(const QString& folder, int projects);
Message folderNotMade(const QString& folder);
Message refusedByStrict(const QString& name);
Message outOfMemory(const QString& name);
Message unexpected(const std::string& reason);

/// The message as a line for standard error.
std::string asText(const Message& message);

/// Exception that ends a command with a message.
class Failure : public std::exception {
public:
    explicit Failure(Message message) : m_message(std::move(message)) {}

    const Message& message() const { return m_message; }
    const char* what() const noexcept override { return m_message.text.c_str(); }

private:
    Message m_message;
};

} // namespace Messages
