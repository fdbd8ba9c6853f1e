#include "Messages.h"

#include "FileNames.h"
#include "Reader/AdaptorTable.h"
#include "Reader/Files.h"
#include "RecoveryText.h"
#include "Repairs/RepairTable.h"

#include <set>

#include <QFileInfo>

namespace Messages {
namespace {

using Reader::ErrorFacts;
using Reader::ErrorKind;
using Reader::WriteObstacle;

ExitCode codeFor(ErrorKind kind) {
    switch (kind) {
    case ErrorKind::Unreadable:
    case ErrorKind::TooLarge:
    case ErrorKind::NoRegularFile:
        return Unreadable;
    case ErrorKind::Empty:
        return Empty;
    case ErrorKind::UnknownForm:
        return UnknownForm;
    case ErrorKind::BrokenXml:
        return BrokenXml;
    case ErrorKind::RefusedXml:
    case ErrorKind::ForeignEncoding:
        return RefusedXml;
    case ErrorKind::NoArchive:
    case ErrorKind::MissingRoot:
        return NoArchive;
    case ErrorKind::BrokenJson:
        return BrokenJson;
    case ErrorKind::WrongEnvelope:
        return WrongEnvelope;
    case ErrorKind::NoVersion:
    case ErrorKind::BadVersion:
        return NoVersion;
    case ErrorKind::WrongForm:
    case ErrorKind::TooNew:
    case ErrorKind::UnreachableVersion:
    case ErrorKind::NoWayBack:
        return WrongVersion;
    case ErrorKind::UnknownStep:
    case ErrorKind::NoSuchForm:
        return WrongUse;
    case ErrorKind::StepFailed:
        return StepFailed;
    case ErrorKind::Unwritable:
    case ErrorKind::InUse:
    case ErrorKind::ChangedMeanwhile:
        return Unwritable;
    case ErrorKind::OutputExists:
        return OutputExists;
    }
    return Unexpected;
}

std::string remedyFor(WriteObstacle obstacle) {
    switch (obstacle) {
    case WriteObstacle::NoFolder:
        return "make its folder first, or give another output";
    case WriteObstacle::IsFolder:
        return "a folder has this name; give another output";
    case WriteObstacle::NotPermitted:
        return "it is not yours to write; give another output, or have its permissions changed";
    case WriteObstacle::NotRegular:
        return "only a regular file is replaced here; remove what has the name, or give another output";
    case WriteObstacle::NoSpace:
        return "free some space on its disk, or give another output";
    case WriteObstacle::None:
        break;
    }
    return "give another output";
}

std::string number(std::optional<int> value) {
    return std::to_string(value.value_or(0));
}

/// Reasons of the toolkit are sentences of their own; here they are a part of one.
std::string withoutFullStop(std::string reason) {
    if (reason.ends_with('.'))
        reason.pop_back();
    return reason;
}

const std::string nameProject = "; name the project's own file";
const std::string restore = "; restore the file from a backup";
const std::string mendOrRestore = "; mend the text there, or restore the file from a backup";

/// Reason and remedy, as the text after the file's name.
std::string sentenceFor(ErrorKind kind, const ErrorFacts& facts) {
    const std::string reason = withoutFullStop(facts.reason);
    switch (kind) {
    case ErrorKind::Unreadable:
        return reason + "; check its name and its permissions";
    case ErrorKind::TooLarge:
        return "larger than 1 GiB, which no project is" + nameProject;
    case ErrorKind::NoRegularFile:
        return "is no regular file, and only those are replaced; give -o instead of --in-place";
    case ErrorKind::Empty:
        return "the file is empty; restore it from a backup";
    case ErrorKind::UnknownForm:
        if (!reason.empty())
            return "a project is XML or JSON; this is " + reason;
        return "neither XML nor JSON, and a project begins with '<' or '{'" + nameProject;
    case ErrorKind::BrokenXml:
        return reason + (facts.isCutOff ? restore : mendOrRestore);
    case ErrorKind::RefusedXml:
        return reason + ", which no project has" + nameProject;
    case ErrorKind::ForeignEncoding:
        return "the text is in " + reason + ", an encoding that projects do not use; convert it to UTF-8";
    case ErrorKind::NoArchive:
        return reason + " (a project is one <Archive>)" + nameProject;
    case ErrorKind::MissingRoot:
        return reason + ", and there is no such <RootObject>; restore the file from a backup";
    case ErrorKind::BrokenJson:
        if (facts.isCutOff)
            return reason + restore;
        return "broken JSON" + (facts.byte ? " at byte " + std::to_string(*facts.byte) : "") + ": " + reason +
               mendOrRestore;
    case ErrorKind::WrongEnvelope:
        return reason + R"( (a project is an object with "version" "1.0" and its root object in "data"))" +
               nameProject;
    case ErrorKind::NoVersion:
        return "the document names no schema version; give it with --from N";
    case ErrorKind::BadVersion:
        return "the schema version " + reason + " is no version number; give the right one with --from N";
    case ErrorKind::WrongForm:
        return "a document of schema version " + number(facts.version) + " can't be " + reason +
               ": documents are XML up to version " + number(Reader::lastXmlVersion) +
               ", and JSON from version " + number(Reader::firstJsonVersion) +
               " on; give the right version with --from";
    case ErrorKind::TooNew:
        return "schema version " + number(facts.version) + " is too new: this program knows versions up to " +
               number(Reader::currentVersion) + "; use a newer version of adaptors";
    case ErrorKind::UnreachableVersion:
        return "a document of schema version " + number(facts.version) + " can go to a version from " +
               number(facts.version) + " to " + number(Reader::currentVersion) + ", not to " +
               number(facts.target) + "; give another one with --to";
    case ErrorKind::NoWayBack:
        return "a JSON document can't become an archive again; ask for version " +
               number(Reader::lastXmlVersion + 1) + " or above with --to";
    case ErrorKind::UnknownStep:
        return "there is no step " + facts.step + "; \"adaptors steps\" lists them all";
    case ErrorKind::NoSuchForm:
        return facts.step + " has no form for this document (" + reason +
               "); \"adaptors steps\" lists the forms of each step";
    case ErrorKind::StepFailed:
        return facts.step + ": " + reason +
               "; \"adaptors verify\" and \"adaptors trace\" help to find what is wrong in the document";
    case ErrorKind::Unwritable:
        return reason + "; " + remedyFor(facts.obstacle);
    case ErrorKind::OutputExists:
        return "exists already; give --force to replace it, or another output";
    case ErrorKind::InUse:
        return "another run is at work on it; wait until that is done and run this again";
    case ErrorKind::ChangedMeanwhile:
        return "it was changed or removed while it was migrated, and was left alone; run this again";
    }
    return facts.reason;
}

/// "film.xml:3:7: "
std::string placeOf(const ErrorFacts& facts) {
    std::string place = FileNames::bytesOf(facts.file);
    for (const auto& part : {facts.line, facts.column}) {
        if (part)
            place += ':' + std::to_string(*part);
    }
    return place.empty() ? place : place + ": ";
}

} // namespace

Message messageFor(const Reader::Error& error) {
    const ErrorFacts& facts = error.facts();
    return {codeFor(error.kind()),
            std::string(Reader::nameOf(error.kind())),
            placeOf(facts) + sentenceFor(error.kind(), facts),
            facts.line,
            facts.column,
            facts.byte,
            facts.step};
}

std::string describe(const Reader::RepairMade& repair) {
    const Repairs::RepairRow* row = Repairs::findRepair(repair.name);
    std::string sentence = withoutFullStop(row ? std::string(row->summary) : repair.text);
    const bool isAcronym = sentence.size() > 1 && sentence[1] >= 'A' && sentence[1] <= 'Z';
    if (!isAcronym && !sentence.empty() && sentence[0] >= 'A' && sentence[0] <= 'Z')
        sentence[0] = static_cast<char>(sentence[0] - 'A' + 'a');
    return repair.name + ": " + sentence;
}

Message withAdvice(Message message, Reader::MigrationReport report) {
    std::string what = report.recovery ? "; " + Texts::recoveryInShort(*report.recovery) : std::string();
    std::set<std::string> known;
    for (const Reader::RepairMade& repair : report.repairs) {
        if (known.insert(repair.name).second)
            what += "; " + describe(repair);
    }
    message.text += "; --repair would help" + what;
    message.repairs = std::move(report.repairs);
    message.recovery = std::move(report.recovery);
    return message;
}

namespace {

std::string quoted(const std::string& text) {
    return '"' + text + '"';
}

/// " did you mean X?" or, where nothing is like it, the other remedy.
std::string remedy(const std::string& suggestion, const std::string& otherwise) {
    return "; " + (suggestion.empty() ? otherwise : "did you mean " + suggestion + "? " + otherwise);
}

std::string helpFor(const std::string& command) {
    return quoted("adaptors help" + (command.empty() ? "" : ' ' + command));
}

Message wrongUse(const std::string& text) {
    return {WrongUse, "wrong-use", text};
}

} // namespace

Message inPlaceNeedsFile() {
    return wrongUse("--in-place needs a file, not standard input; name the file, or give -o");
}

Message oneStandardInput() {
    return wrongUse("only one of the two files can be standard input; name the other one");
}

Message differentForms(const QString& before, const QString& after) {
    return wrongUse(FileNames::bytesOf(before) + " and " + FileNames::bytesOf(after) +
                    " have different forms, and --raw compares only documents of one form; leave --raw out");
}

Message noSuchClip(const QString& name, const std::string& clip) {
    return wrongUse(FileNames::bytesOf(name) + " has no clip with the name or id " + quoted(clip) +
                    "; \"adaptors info --timeline\" shows the clips");
}

Message stepDidNotRun(const QString& name, const std::string& step) {
    return wrongUse(step + " does not run on " + FileNames::bytesOf(name) +
                    "; \"adaptors info\" lists the steps that do");
}

Message notOneProject(const QString& folder, const QStringList& projects) {
    constexpr int mostNames = 10;
    std::string names;
    for (const QString& project : projects.mid(0, mostNames))
        names += (names.empty() ? "" : ", ") + FileNames::bytesOf(project);
    if (projects.size() > mostNames)
        names += " and " + std::to_string(projects.size() - mostNames) + " more";
    return {Unreadable, "unreadable",
            FileNames::bytesOf(folder) +
                ": the folder of a project holds one .xml or .json file, and this one holds " +
                (projects.isEmpty() ? "none" : std::to_string(projects.size()) + ": " + names) +
                "; name the project's own file"};
}

Message folderNotMade(const QString& folder) {
    return {
        Unwritable, "unwritable",
        FileNames::bytesOf(folder) +
            ": can't make this folder; make the one above it first, check its permissions, or give another "
            "one"};
}

Message refusedByStrict(const QString& name) {
    return {StrictFailure, "strict",
            FileNames::bytesOf(name) +
                ": not written, because --strict allows neither errors nor losses; look at those "
                "listed here, or leave --strict out to write the result all the same"};
}

Message wouldLose(const QString& name) {
    return {StrictFailure, "check",
            FileNames::bytesOf(name) +
                ": a migration would lose something or report an error, see the lines above; nothing "
                "was written"};
}

Message noBackup(const QString& file) {
    return {Unreadable, "no-backup",
            FileNames::bytesOf(file) + ": has no backup " + FileNames::bytesOf(QFileInfo(file).fileName()) +
                ".bak beside it; --in-place makes one"};
}

Message outOfMemory(const QString& name, const std::string& bound) {
    return {OutOfMemory, "out-of-memory",
            FileNames::bytesOf(name) + ": the document needs more memory than " + bound +
                "; nothing was written; check that it is a project, or give more with --max-memory"};
}

Message outputLost(const std::string& reason) {
    return {Unwritable, "unwritable",
            "standard output: " + reason + "; free some space where it goes, or send it somewhere else"};
}

Message unexpected(const std::string& reason) {
    return {Unexpected, "unexpected",
            "unexpected: " + reason + "; please report this with the file, if you can"};
}

Message noCommand() {
    return wrongUse("no command is given; " + helpFor({}) + " lists the commands");
}

Message unknownCommand(const std::string& word, const std::string& suggestion) {
    return wrongUse(
        "there is no command " + quoted(word) +
        remedy(suggestion.empty() ? suggestion : quoted(suggestion), helpFor({}) + " lists the commands"));
}

Message unknownOption(const std::string& option, const std::string& command, const std::string& suggestion) {
    return wrongUse((command.empty() ? "there is no option " : quoted(command) + " has no option ") + option +
                    remedy(suggestion, helpFor(command) + " lists the options"));
}

Message oneArgumentTooMany(const std::string& word, const std::string& command, const std::string& takes) {
    if (takes.empty())
        return wrongUse(quoted(command) + " takes options only; leave " + quoted(word) + " out");
    return wrongUse(quoted(command) + " takes " + takes + ", and " + quoted(word) +
                    " is one argument more; give one file a run, and put names with spaces in quotes");
}

Message missingArgument(const std::string& argument, const std::string& command) {
    return wrongUse(quoted(command) + " needs " + argument + "; " + helpFor(command) + " shows examples");
}

Message missingValue(const std::string& option, const std::string& command) {
    return wrongUse(option + " needs a value behind it; " + helpFor(command) + " says which");
}

Message emptyValue(const std::string& option) {
    return wrongUse("the name given for " + option +
                    " is empty; give another one (or is a variable of your shell not set?)");
}

Message badValue(const std::string& option, const std::string& value, const std::string& expected) {
    return wrongUse(option + " can't be " + quoted(value) + "; give " + expected);
}

Message givenTwice(const std::string& option) {
    return wrongUse(option + " is given more than once; give it once");
}

Message excludeEachOther(const std::string& one, const std::string& other) {
    return wrongUse(one + " and " + other + " exclude each other; give only one of them");
}

Message otherWrongUse(const std::string& reason, const std::string& command) {
    return wrongUse(reason + "; " + helpFor(command) + " shows examples");
}

Message unknownStep(const std::string& name, const std::string& suggestion) {
    return {WrongUse,
            std::string(Reader::nameOf(ErrorKind::UnknownStep)),
            "there is no step " + quoted(name) + remedy(suggestion, "\"adaptors steps\" lists them all"),
            {},
            {},
            {},
            name};
}

Message ambiguousStep(const std::string& name, const std::vector<std::string>& candidates) {
    std::string list;
    for (const std::string& candidate : candidates)
        list += (list.empty() ? "" : ", ") + candidate;
    return {WrongUse,
            "ambiguous-step",
            quoted(name) + " is the beginning of " + std::to_string(candidates.size()) + " steps: " + list +
                "; give more of the name",
            {},
            {},
            {},
            name};
}

std::vector<std::string> notesOn(const QString& file, const Reader::Replacement& replacement) {
    std::vector<std::string> notes;
    const std::string target = FileNames::bytesOf(replacement.target);
    if (replacement.isLinked)
        notes.push_back(FileNames::bytesOf(file) + " is a link, and stays one: the file that it leads to, " +
                        target + ", was replaced");
    if (replacement.otherNames > 0)
        notes.push_back(
            target + " has " + std::to_string(replacement.otherNames) + " other name" +
            (replacement.otherNames == 1 ? " (a hard link), which keeps" : "s (hard links), which keep") +
            " the old content");
    return notes;
}

std::string asText(const Message& message, const Terminal::Colours& colours) {
    return "adaptors: " + colours.red("error") + ": " + Terminal::escaped(message.text) + '\n';
}

} // namespace Messages
