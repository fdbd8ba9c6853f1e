#include "Messages.h"

#include "Reader/AdaptorTable.h"
#include "Reader/Files.h"
#include "Terminal.h"

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
    case WriteObstacle::None:
        break;
    }
    return "free some space on its disk, or give another output";
}

std::string number(std::optional<int> value) {
    return std::to_string(value.value_or(0));
}

const std::string nameProject = "; name the project's own file";
const std::string restore = "; restore the file from a backup";
const std::string mendOrRestore = "; mend the text there, or restore the file from a backup";

/// What is wrong and what to do, behind the file's name.
std::string sentenceFor(ErrorKind kind, const ErrorFacts& facts) {
    const std::string& reason = facts.reason;
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
        return reason + ", a project is one <Archive>" + nameProject;
    case ErrorKind::MissingRoot:
        return reason + ", and there is no such <RootObject>; restore the file from a backup";
    case ErrorKind::BrokenJson:
        if (facts.isCutOff)
            return reason + restore;
        return "broken JSON" + (facts.byte ? " at byte " + std::to_string(*facts.byte) : "") + ": " + reason +
               mendOrRestore;
    case ErrorKind::WrongEnvelope:
        return reason + R"(, a project is an object with "version" "1.0" and its root object in "data")" +
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
        return "schema version " + number(facts.version) + " is too new, this program knows versions up to " +
               number(Reader::currentVersion) + "; use a newer program";
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
        return facts.step + " has no form for a document that is " + reason +
               "; \"adaptors steps\" lists the forms of each step";
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
    return reason;
}

/// "film.xml:3:7: "
std::string placeOf(const ErrorFacts& facts) {
    std::string place = facts.file.toStdString();
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

Message inPlaceNeedsFile() {
    return {WrongUse, "wrong-use", "--in-place needs a file, not standard input; name the file, or give -o"};
}

Message notOneProject(const QString& folder, int projects) {
    return {Unreadable, "unreadable",
            folder.toStdString() + ": a project's folder holds one .xml or .json file, this one " +
                std::to_string(projects) + "; name the file"};
}

Message folderNotMade(const QString& folder) {
    return {Unwritable, "unwritable",
            folder.toStdString() +
                ": can't make this folder; make the one above it first, or give another one"};
}

Message refusedByStrict(const QString& name) {
    return {StrictFailure, "strict",
            name.toStdString() + ": not written, since --strict lets no error and no loss pass; look at the "
                                 "lines above, and leave "
                                 "--strict out to write it all the same"};
}

Message outOfMemory(const QString& name) {
    return {OutOfMemory, "out-of-memory",
            name.toStdString() +
                ": the document needs more memory than any project of its size takes; nothing was "
                "written; check that it is a project"};
}

Message unexpected(const std::string& reason) {
    return {Unexpected, "unexpected",
            "unexpected: " + reason + "; please report this with the file, if you can"};
}

std::string asText(const Message& message) {
    return "adaptors: " + Terminal::red("error") + ": " + message.text + '\n';
}

} // namespace Messages
