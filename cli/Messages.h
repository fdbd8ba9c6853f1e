#pragma once

#include "Reader/Error.h"
#include "Reader/Files.h"
#include "Reader/MigrationReport.h"
#include "Terminal.h"

#include <QString>
#include <QStringList>

#include <exception>
#include <optional>
#include <string>
#include <vector>

/// What the program says where it fails: all words for people, remedies and exit codes.
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
    WouldMigrate = 19, ///< `--check`: a migration has something to do and would lose nothing
    SomeFailed = 20,   ///< `batch`: files failed, or results are not whole
    IsDifferent = 21,  ///< `diff` found a difference
    Incomplete = 22,   ///< the result was written, and something of the project is missing in it
};

struct Message {
    ExitCode code;
    std::string kind; ///< a word for programs, such as "broken-xml"
    std::string
        text; ///< where, what is wrong and what to do, without a full stop; not yet fit for a terminal
    std::optional<qint64> line = {};
    std::optional<qint64> column = {};
    std::optional<qint64> byte = {};
    std::string step = {};                        ///< class name of the adaptor that failed; empty for none
    std::vector<Reader::RepairMade> repairs = {}; ///< those with which it would succeed
    std::optional<Reader::RecoveryReport> recovery = {}; ///< what would be recovered of a damaged file
};

Message messageFor(const Reader::Error& error);

/// What a repair does, a part of a sentence: "second-timelines: timelines after the first get ...".
std::string describe(const Reader::RepairMade& repair);

/// The message of an error where --repair would help, by what that report says of a migration with it.
Message withAdvice(Message message, Reader::MigrationReport report);

// Failures that the library does not know.

Message inPlaceNeedsFile();
Message oneStandardInput();
Message differentForms(const QString& before, const QString& after);
Message noSuchClip(const QString& name, const std::string& clip);
Message stepDidNotRun(const QString& name, const std::string& step);
Message notOneProject(const QString& folder, const QStringList& projects);
Message folderNotMade(const QString& folder);
Message refusedByStrict(const QString& name);
Message wouldLose(const QString& name);
Message noBackup(const QString& file);
/// `bound` is what allows no more, such as "--max-memory allows, 64 MiB".
Message outOfMemory(const QString& name, const std::string& bound);
Message outputLost(const std::string& reason);
Message unexpected(const std::string& reason);

// Wrong use of the command line. A suggestion is what was probably meant; empty for none.

Message noCommand();
Message unknownCommand(const std::string& word, const std::string& suggestion);
/// `command` is empty in front of the command.
Message unknownOption(const std::string& option, const std::string& command, const std::string& suggestion);
/// `takes` names the arguments that the command takes, "STEP FILE"; empty for none.
Message oneArgumentTooMany(const std::string& word, const std::string& command, const std::string& takes);
Message missingArgument(const std::string& argument, const std::string& command);
Message missingValue(const std::string& option, const std::string& command);
Message emptyValue(const std::string& option);
Message badValue(const std::string& option, const std::string& value, const std::string& expected);
Message givenTwice(const std::string& option);
Message excludeEachOther(const std::string& one, const std::string& other);
Message otherWrongUse(const std::string& reason, const std::string& command);
Message unknownStep(const std::string& name, const std::string& suggestion);
Message ambiguousStep(const std::string& name, const std::vector<std::string>& candidates);

/// What people may not expect of a file that was replaced, a sentence each without a full stop. `file` is the name that
/// they gave it.
std::vector<std::string> notesOn(const QString& file, const Reader::Replacement& replacement);

/// The message as a line for standard error, fit for a terminal.
std::string asText(const Message& message, const Terminal::Colours& colours = Terminal::Colours());

/// Ends a command with a message.
class Failure : public std::exception {
public:
    explicit Failure(Message message) : m_message(std::move(message)) {}

    const Message& message() const { return m_message; }
    const char* what() const noexcept override { return m_message.text.c_str(); }

private:
    Message m_message;
};

} // namespace Messages
